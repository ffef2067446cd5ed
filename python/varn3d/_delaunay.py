from __future__ import annotations

import threading
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._inputs import as_points, as_queries, as_values


class FlatError(ValueError):
    """The points lie in a plane, so that there is no tetrahedron.

    `dimension` says what they span, exactly: 2 a plane, 1 a line, 0 a single place, -1 nothing
    (there are no points).
    """

    dimension: int

    def __init__(self, dimension: int) -> None:
        super().__init__(dimension)
        self.dimension = dimension

    def __str__(self) -> str:
        where = ["there are no points", "all points are equal", "all points lie on a line",
                 "all points lie in a plane"][self.dimension + 1]
        return f"no tetrahedron: {where} (dimension {self.dimension})"


class Delaunay:
    """The Delaunay tetrahedralisation of points in space.

    No point lies strictly inside the circumsphere of a tetrahedron, and the tetrahedra fill the
    convex hull of the points. All decisions are exact: grids, points on a sphere, duplicates and
    points far from the origin give a valid mesh without flat tetrahedra, and the same points give
    the same mesh everywhere. There is no tolerance.

    Parameters
    ----------
    points : (n, 3) array_like
        Finite numbers; what is not a double becomes one. A contiguous array of doubles is not
        copied: don't change it while the mesh is in use.

    Raises
    ------
    ValueError
        The array has another shape, or a NaN or infinite coordinate. Names the first such row.
    FlatError
        The points lie in a plane (a ValueError, too). Its `dimension` tells what they span.
    MemoryError
        Memory has run out, or the mesh could grow beyond 2**30 tetrahedra.

    Examples
    --------
    >>> import numpy as np, varn3d
    >>> corners = np.array([[0, 0, 0], [2, 0, 0], [0, 2, 0], [0, 0, 2], [3, 3, 3]])
    >>> mesh = varn3d.Delaunay(corners)
    >>> mesh.simplices.shape, mesh.convex_hull.shape
    ((2, 4), (6, 3))
    >>> mesh.find_simplex([[0.5, 0.5, 0.5], [9, 9, 9]])[1]
    -1
    >>> mesh.interpolate(corners.sum(axis=1), [1, 1, 0.5])
    array(2.5)

    Notes
    -----
    Attributes and methods that `scipy.spatial.Delaunay` has mean the same there: `points`,
    `simplices`, `neighbors`, `convex_hull`, `vertex_neighbor_vertices`, `find_simplex`,
    `add_points`. Arrays stay valid when the mesh is gone, and keep their contents when points are
    added; those that the mesh shares with others are not writable.

    Other Python threads run while a mesh is computing, and several may use the same mesh; queries
    run at the same time, adding points takes turns with them. Ctrl-C stops what takes long. Nothing
    is printed. A mesh can be pickled; reading it back computes it anew, to the same arrays.
    """

    def __init__(self, points: ArrayLike) -> None:
        self._points = as_points(points, "points")
        self._batches = [len(self._points)]
        self._build()

    def _build(self) -> None:
        """Inserts the points, in the batches in which they came."""
        self._adding = threading.Lock()
        self._core = _core.Mesh()
        end = 0
        for size in self._batches:
            self._core.insert(self._points[end:end + size])
            end += size
        if self._core.dimension() < 3:
            raise FlatError(self._core.dimension())

    @property
    def points(self) -> NDArray[np.float64]:
        """The points, (n, 3), in the order in which they were given. Not writable."""
        view = self._points.view()
        view.flags.writeable = False
        return view

    @property
    def simplices(self) -> NDArray[np.int32]:
        """The tetrahedra, (m, 4), as rows of `points`.

        Orientation is positive: with a, b, c, d = points[simplices[i]], the determinant of
        [b - a, c - a, d - a] is above 0. Of equal points only the first one appears.
        """
        return self._core.simplices()

    @property
    def neighbors(self) -> NDArray[np.int32]:
        """The neighbours of each tetrahedron, (m, 4), as rows of `simplices`.

        Neighbour k lies opposite corner k; it is -1 beyond the hull.
        """
        return self._core.neighbors()

    @property
    def convex_hull(self) -> NDArray[np.int32]:
        """The triangles of the hull's surface, (h, 3), as rows of `points`.

        Corners run counter-clockwise seen from outside.
        """
        return self._core.convex_hull()

    @property
    def duplicates(self) -> NDArray[np.int32]:
        """Points equal to an earlier one, (d, 2): the point's row and that of the first equal one.

        0.0 and -0.0 are equal.
        """
        return self._core.duplicates()

    @property
    def vertex_neighbor_vertices(self) -> tuple[NDArray[np.int32], NDArray[np.int32]]:
        """Which points share an edge with a point: `(indptr, indices)`.

        The neighbours of point k are `indices[indptr[k]:indptr[k + 1]]`, in ascending order; none
        for a duplicate.
        """
        return self._core.vertex_neighbor_vertices()

    def find_simplex(self, xi: ArrayLike) -> NDArray[np.int32]:
        """The tetrahedra that hold the points `xi`, as rows of `simplices`.

        Parameters
        ----------
        xi : (..., 3) array_like
            Finite numbers.

        Returns
        -------
        (...) array of int32
            -1 outside the hull; points on its surface are inside. For a point that several
            tetrahedra share, one of them. Decided exactly.
        """
        queries = as_queries(xi, "xi")
        return self._core.find_simplex(queries.reshape(-1, 3)).reshape(queries.shape[:-1])

    def nearest_vertex(self, xi: ArrayLike) -> NDArray[np.int32]:
        """The points of the mesh that are nearest to the points `xi`, in the hull and outside.

        Parameters
        ----------
        xi : (..., 3) array_like
            Finite numbers.

        Returns
        -------
        (...) array of int32
            Rows of `points`. Decided exactly; of several at the same distance, the first.
        """
        queries = as_queries(xi, "xi")
        return self._core.nearest_vertex(queries.reshape(-1, 3)).reshape(queries.shape[:-1])

    def interpolate(self, values: ArrayLike, xi: ArrayLike) -> NDArray[np.float64]:
        """Interpolates values that are given at the points, linearly in each tetrahedron.

        Parameters
        ----------
        values : (n,) or (n, k) array_like
            A number, or k numbers, for each point. Those of duplicates are not used.
        xi : (..., 3) array_like
            Finite numbers.

        Returns
        -------
        (...) or (..., k) array of double
            A weighted mean of the values at the tetrahedron's corners: at a point of the mesh
            exactly its value. NaN outside the hull.
        """
        columns = as_values(values, "values")
        if columns.ndim not in (1, 2):
            raise ValueError(f"values must have shape (n,) or (n, k), not {columns.shape}")
        queries = as_queries(xi, "xi")
        table = columns[:, None] if columns.ndim == 1 else columns
        result = self._core.interpolate(table, queries.reshape(-1, 3))
        return result.reshape(queries.shape[:-1] + columns.shape[1:])

    def voronoi_volumes(self) -> NDArray[np.float64]:
        """The volume of each point's Voronoi cell, (n,): the space that is nearest to this point.

        Infinite for the points whose cells are unbounded, those on the hull's surface. Equal points
        share a cell, and each of them has its volume.
        """
        return self._core.voronoi_volumes()

    def add_points(self, points: ArrayLike) -> None:
        """Adds points to the mesh, which become the last rows of `points`.

        Fast for at least as many points as there are. A point of fewer costs about six times as
        much: collect what comes one by one.

        Parameters
        ----------
        points : (k, 3) array_like
            Finite numbers.

        Raises
        ------
        ValueError, MemoryError
            As for the constructor.

        Notes
        -----
        If Ctrl-C or an error ends it, the mesh is valid. Either `points` is what it was, or it has
        the new points, and those that are not in a tetrahedron yet join the mesh with the next
        call, for which no points will do: `mesh.add_points(numpy.empty((0, 3)))`.
        """
        more = as_points(points, "points")
        with self._adding:
            # Before the mesh names them: other threads may be reading.
            joined = self._points = np.concatenate([self._points, more])
            try:
                self._core.insert(more)
            finally:
                self._points = joined[:self._core.num_points()]
                self._batches.append(len(self._points) - sum(self._batches))

    def check(self) -> bool:
        """Checks every tetrahedron, its neighbours and its empty circumsphere, exactly.

        True, unless there is a fault in varn3d. Takes about as long as making the mesh.
        """
        return self._core.check()

    def __repr__(self) -> str:
        return f"<varn3d.Delaunay of {len(self._points)} points>"

    def __getstate__(self) -> dict[str, Any]:
        state = self.__dict__.copy()
        del state["_core"], state["_adding"]
        return state

    def __setstate__(self, state: dict[str, Any]) -> None:
        self.__dict__.update(state)
        self._build()
