"""Exact Delaunay tetrahedralisation of points in space.

    import varn3d
    mesh = varn3d.Delaunay(points)      # points: (n, 3)
    mesh.simplices                      # (m, 4): the tetrahedra, as rows of points

`help(varn3d.Delaunay)` tells the rest. Names, shapes and types are those of
`scipy.spatial.Delaunay` wherever it has them.
"""

from ._core import __version__
from ._delaunay import Delaunay, FlatError

__all__ = ["Delaunay", "FlatError", "__version__"]
