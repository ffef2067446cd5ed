#!/usr/bin/python3
"""draw-scan.py VARN3D SCAN.ply PICTURE.png: the scanned object as tetrahedra, cut open.

The scan is thinned, so that single triangles can be seen, and points are added inside the object, the
farther apart the deeper they lie. The program varn3d tetrahedralises both. What can be reached from
outside through large facets is not the object. Colours are the scan's, and in the cut the sizes of the
tetrahedra. Needs a screen and, from Debian, python3-matplotlib, python3-scipy and python3-vtk9.
"""

import subprocess
import sys

import matplotlib.cm
import numpy as np
import vtk
from scipy.spatial import cKDTree
from vtk.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray

SPACING = 1.25  # of the thinned scan, in millimetres
LARGEST_FACET = 3.5  # circumradius of facets of the object's surface
WIDTH, HEIGHT = 1000, 760
OVERSAMPLING = 3

# The facet opposite each corner, seen from outside.
FACETS = np.array([[1, 3, 2], [0, 2, 3], [0, 3, 1], [0, 1, 2]])


def read_scan(name):
    with open(name, encoding="ascii") as file:
        lines = file.read().split("end_header\n")[1].splitlines()
    rows = np.array([line.split() for line in lines], dtype=float)
    return rows[:, :3], rows[:, 3:].astype(np.uint8)


def read_rows(name):
    """The rows of a TetGen file, without their numbers."""
    with open(name, encoding="ascii") as file:
        lines = [line for line in file if not line.startswith("#")]
    return np.array([line.split()[1:] for line in lines[1:]], dtype=np.int64)


def tetrahedralise(program, points):
    """Corners and neighbours of the tetrahedra."""
    np.savetxt("drawn.xyz", points, fmt="%.17g")
    subprocess.run([program, "drawn.xyz", "--quiet", "--tetgen", "drawn"], check=True)
    return read_rows("drawn.ele"), read_rows("drawn.neigh")


def in_object(points, tets, neighbours):
    """Which tetrahedra can't be reached from outside through large facets."""
    a, b, c = np.moveaxis(points[tets[:, FACETS]], 2, 0)
    length = lambda edge: np.linalg.norm(edge, axis=-1)
    sides = length(b - c) * length(c - a) * length(a - b)
    passable = sides > LARGEST_FACET * 2 * length(np.cross(b - a, c - a))
    reached = np.zeros(len(tets), dtype=bool)
    front = np.unique(np.nonzero((neighbours < 0) & passable)[0])
    while len(front):
        reached[front] = True
        beyond = neighbours[front][passable[front]]
        beyond = np.unique(beyond[beyond >= 0])
        front = beyond[~reached[beyond]]
    return ~reached


def sizes(points, tets):
    """The edges of cubes as large as the tetrahedra, but for a factor."""
    a, b, c, d = np.moveaxis(points[tets], 1, 0)
    return np.cbrt(np.abs(np.einsum("ij,ij->i", b - a, np.cross(c - a, d - a))))


def thinned(random, points, distance):
    """Positions of points, picked at random, that keep this distance (or each its own) from others."""
    near = cKDTree(points).query_ball_point(points, distance)
    left = np.ones(len(points), dtype=bool)
    kept = []
    for i in random.permutation(len(points)):
        if left[i]:
            kept.append(i)
            left[near[i]] = False
    return np.sort(kept)


def points_inside(random, program, surface):
    tets, neighbours = tetrahedralise(program, surface)
    volumes = np.where(in_object(surface, tets, neighbours), sizes(surface, tets)**3, 0.0)
    chosen = tets[random.choice(len(tets), 80000, p=volumes / volumes.sum())]
    inside = np.einsum("ij,ijk->ik", random.dirichlet(np.ones(4), len(chosen)), surface[chosen])
    depth = cKDTree(surface).query(inside)[0]
    deep = depth > 0.9 * SPACING
    inside = inside[deep]
    return inside[thinned(random, inside, SPACING + 0.22 * depth[deep])]


def surface_of(points, triangles, colours):
    points_of_surface = vtk.vtkPoints()
    points_of_surface.SetData(numpy_to_vtk(points, deep=True))
    rows = np.hstack([np.full((len(triangles), 1), 3), triangles])
    cells = vtk.vtkCellArray()
    cells.SetCells(len(triangles), numpy_to_vtkIdTypeArray(rows.ravel(), deep=True))
    surface = vtk.vtkPolyData()
    surface.SetPoints(points_of_surface)
    surface.SetPolys(cells)
    surface.GetCellData().SetScalars(numpy_to_vtk(np.ascontiguousarray(colours), deep=True))
    return surface


def actor(surface, smooth, edge_colour, edge_width):
    normals = vtk.vtkPolyDataNormals()
    normals.SetInputData(surface)
    normals.SplittingOff()
    normals.ConsistencyOff()
    normals.SetComputePointNormals(smooth)
    mapper = vtk.vtkPolyDataMapper()
    mapper.SetInputConnection(normals.GetOutputPort())
    mapper.SetColorModeToDirectScalars()
    drawn = vtk.vtkActor()
    drawn.SetMapper(mapper)
    look = drawn.GetProperty()
    look.SetAmbient(0.3)
    look.SetDiffuse(0.75)
    look.SetSpecular(0.12 if smooth else 0.0)
    look.SetSpecularPower(20)
    look.EdgeVisibilityOn()
    look.SetEdgeColor(*edge_colour)
    look.SetLineWidth(edge_width * OVERSAMPLING)
    return drawn


def draw(actors, name):
    scene = vtk.vtkRenderer()
    scene.SetBackground(1, 1, 1)
    for drawn in actors:
        scene.AddActor(drawn)
    lights = vtk.vtkLightKit()
    lights.SetKeyLightIntensity(0.95)
    lights.SetKeyToFillRatio(2.2)
    lights.AddLightsToRenderer(scene)
    window = vtk.vtkRenderWindow()
    window.OffScreenRenderingOn()
    window.SetSize(WIDTH * OVERSAMPLING, HEIGHT * OVERSAMPLING)
    window.AddRenderer(scene)
    camera = scene.GetActiveCamera()
    camera.SetViewUp(0, 0, 1)
    camera.SetFocalPoint(4, 0, 46)
    camera.SetPosition(120, -330, 140)
    camera.SetViewAngle(16.5)
    scene.ResetCameraClippingRange()
    window.Render()
    image = vtk.vtkWindowToImageFilter()
    image.SetInput(window)
    image.ReadFrontBufferOff()
    smaller = vtk.vtkImageResize()
    smaller.SetInputConnection(image.GetOutputPort())
    smaller.SetOutputDimensions(WIDTH, HEIGHT, 1)
    writer = vtk.vtkPNGWriter()
    writer.SetInputConnection(smaller.GetOutputPort())
    writer.SetFileName(name)
    writer.Write()


def main():
    program, scan, picture = sys.argv[1:]
    random = np.random.default_rng(1)
    points, colours = read_scan(scan)
    kept = thinned(random, points, SPACING)
    inside = points_inside(random, program, points[kept])
    colours = np.vstack([colours[kept], colours[cKDTree(points).query(inside)[1]]])
    points = np.vstack([points[kept], inside])

    tets, neighbours = tetrahedralise(program, points)
    whole = in_object(points, tets, neighbours)
    middles = points[tets].mean(axis=1)
    shown = whole & ~((middles[:, 1] < -1) & (middles[:, 0] < 10))
    # The last of an array is taken for the neighbour that isn't there; it is not looked at.
    bare = shown[:, None] & ~((neighbours >= 0) & shown[neighbours])
    cut = bare & (neighbours >= 0) & whole[neighbours]
    skin = tets[:, FACETS][bare & ~cut]
    median = np.argsort(colours[skin].sum(axis=2), axis=1)[:, 1]
    skin_colours = colours[skin[np.arange(len(skin)), median]]
    size = sizes(points, tets)[np.nonzero(cut)[0]]
    low, high = np.percentile(size, [5, 98])
    scale = matplotlib.cm.get_cmap("turbo")
    cut_colours = scale(0.05 + 0.9 * np.clip((size - low) / (high - low), 0, 1), bytes=True)[:, :3]
    draw([actor(surface_of(points, skin, skin_colours), True, (0.62, 0.44, 0.08), 0.45),
          actor(surface_of(points, tets[:, FACETS][cut], cut_colours), False, (0.12, 0.12, 0.2), 0.8)],
         picture)


if __name__ == "__main__":
    main()
