#!/usr/bin/python3
"""Makes examples/data/duck.ply: a bath duck of our own design, scanned by a laser line scanner of our
own making. From the same random numbers it makes the same file. Needs numpy (Debian: python3-numpy).

The duck is given by its distance function. Each view looks at it with a fan of lines; a ray's return
is where it meets the duck, moved along the ray by the noise of the range. Lost are returns from
grazing and mirroring places and many from the dark eyes, and stretches of lines; where a ray passes
close to an edge, it may return a point between there and what lies behind.
"""

import os
import sys

import numpy as np

# Lengths in millimetres: x towards the beak, z up, the duck stands on z = 0.
DISTANCE = 400.0  # of the scanner from the duck's middle
MIDDLE = np.array([0.0, 0.0, 42.0])
LINE_STEP = 2.1 / DISTANCE  # angles between lines, and between a line's rays
RAY_STEP = 1.05 / DISTANCE
HALF_FAN = 68.0 / DISTANCE
RANGE_NOISE = 0.04
POSE_NOISE = 0.03  # of where a view believes itself to be
RANGE_STEP = 0.01
# Azimuth and elevation of the views, in degrees.
VIEWS = [(a, 12) for a in range(10, 360, 36)] + [(a, 52) for a in range(25, 360, 72)] + [
    (a, -50) for a in range(0, 360, 90)]

YELLOW, ORANGE, BLACK = (247, 200, 38), (236, 112, 22), (24, 22, 26)


def ellipsoid(p, centre, radii, tilt=0.0):
    """Nearly the distance; `tilt` turns it about the y axis, nose up, in degrees."""
    q = p - np.asarray(centre)
    c, s = np.cos(np.radians(tilt)), np.sin(np.radians(tilt))
    q = np.stack([c * q[:, 0] + s * q[:, 2], q[:, 1], -s * q[:, 0] + c * q[:, 2]], axis=1)
    radii = np.asarray(radii)
    k0 = np.linalg.norm(q / radii, axis=1)
    k1 = np.linalg.norm(q / radii**2, axis=1)
    return k0 * (k0 - 1.0) / np.maximum(k1, 1e-12)


def joined(a, b, fillet):
    """The union of two bodies with a rounded seam."""
    h = np.clip(0.5 + 0.5 * (b - a) / fillet, 0.0, 1.0)
    return b + (a - b) * h - fillet * h * (1.0 - h)


def parts(p):
    """Distances to the plumage, the beak and what is painted black around the eyes; the left is the
    right's mirror image."""
    p = np.stack([p[:, 0], np.abs(p[:, 1]), p[:, 2]], axis=1)
    plumage = ellipsoid(p, (-4, 0, 27), (44, 33, 29))
    plumage = joined(plumage, ellipsoid(p, (-40, 0, 44), (20, 14, 8), -38), 14)
    plumage = joined(plumage, ellipsoid(p, (17, 0, 50), (19, 18, 20)), 8)
    plumage = joined(plumage, ellipsoid(p, (22, 0, 74), (23, 22, 22)), 7)
    plumage = joined(plumage, ellipsoid(p, (-10, 30, 34), (25, 8, 14), -14), 2.5)
    plumage = joined(plumage, ellipsoid(p, (-31, 32, 43), (10, 5, 6), -40), 5)
    plumage = -joined(-plumage, p[:, 2], 5)
    beak = ellipsoid(p, (46, 0, 70), (14, 14, 4.5), 10)
    beak = joined(beak, ellipsoid(p, (42, 0, 65.5), (12, 11, 4), -10), 1.5)
    eyes = ellipsoid(p, (38, 14, 81), (5.5, 5.5, 6.5))
    return plumage, beak, eyes


def distance(p):
    plumage, beak, _ = parts(p)
    return joined(plumage, beak, 4)


def normals(p):
    h = 1e-3
    slope = np.stack([distance(p + h * e) - distance(p - h * e) for e in np.eye(3)], axis=1)
    return slope / np.linalg.norm(slope, axis=1)[:, None]


def trace(origin, rays):
    """Where the rays meet the duck (infinity where they miss), and how close they came on the way to
    where they left it behind."""
    reached = np.full(len(rays), DISTANCE - 90.0)
    closest = np.full(len(rays), np.inf)
    closest_at = np.full(len(rays), np.inf)
    last = np.full(len(rays), np.inf)
    for _ in range(160):
        d = distance(origin + reached[:, None] * rays)
        receding = (d > last) & (last < closest) & (d > 0.05)
        closest = np.where(receding, last, closest)
        closest_at = np.where(receding, reached, closest_at)
        last = d
        reached = reached + 0.8 * np.maximum(d, 0.0)
    met = (last < 0.02) & (reached < DISTANCE + 90.0)
    return np.where(met, reached, np.inf), closest, closest_at


def fan(origin):
    """The rays of a view, line by line, and each one's line."""
    forward = (MIDDLE - origin) / np.linalg.norm(MIDDLE - origin)
    right = np.cross(forward, (0.0, 0.0, 1.0))
    right /= np.linalg.norm(right)
    up = np.cross(right, forward)
    lines = np.arange(-HALF_FAN, HALF_FAN, LINE_STEP)
    along = np.arange(-HALF_FAN, HALF_FAN, RAY_STEP)
    u, v = np.meshgrid(lines, along, indexing="ij")
    rays = forward + u.reshape(-1, 1) * right + v.reshape(-1, 1) * up
    line = np.repeat(np.arange(len(lines)), len(along))
    return rays / np.linalg.norm(rays, axis=1)[:, None], line


def is_lost(random, origin, points, line):
    normal = normals(points)
    back = origin - points
    back /= np.linalg.norm(back, axis=1)[:, None]
    facing = np.sum(normal * back, axis=1)
    grazing = random.random(len(points)) > np.clip((facing - 0.12) / 0.25, 0.0, 0.995)
    mirroring = facing > np.cos(np.radians(2.5))
    dark = (parts(points)[2] < 0) & (random.random(len(points)) < 0.35)
    stretch = np.zeros(len(points), dtype=bool)
    for lost_line in random.integers(0, line.max() + 1, 3):
        first = random.uniform(-40, 40)
        stretch |= (line == lost_line) & (np.abs(points[:, 2] - MIDDLE[2] - first) < 9)
    return grazing | mirroring | dark | stretch


def colours(random, points):
    plumage, beak, eyes = parts(points)
    colour = np.where((plumage < beak)[:, None], YELLOW, ORANGE)
    colour = np.where((eyes < 0)[:, None], BLACK, colour)
    return np.clip(colour + random.normal(0.0, 5.0, colour.shape), 0, 255).astype(np.uint8)


def view(random, azimuth, elevation):
    a, e = np.radians(azimuth), np.radians(elevation)
    origin = MIDDLE + DISTANCE * np.array([np.cos(a) * np.cos(e), np.sin(a) * np.cos(e), np.sin(e)])
    rays, line = fan(origin)
    reached, closest, closest_at = trace(origin, rays)
    # Half of the beam on an edge and half on what is behind: a range in between.
    mixed = np.isfinite(reached) & (closest < 0.25) & (random.random(len(rays)) < 0.25)
    share = random.random(len(rays))
    kept = np.isfinite(reached)
    kept[kept] &= ~is_lost(random, origin, origin + reached[kept, None] * rays[kept], line[kept])
    between = np.where(mixed, share * closest_at + (1 - share) * reached, reached)
    noisy = between + random.normal(0.0, RANGE_NOISE, len(rays))
    noisy = np.round(noisy / RANGE_STEP) * RANGE_STEP
    exact = origin + reached[kept, None] * rays[kept]
    points = origin + noisy[kept, None] * rays[kept] + random.normal(0.0, POSE_NOISE, 3)
    return points, colours(random, exact)


def main():
    random = np.random.default_rng(1)
    views = [view(random, *angles) for angles in VIEWS]
    points = np.concatenate([points for points, _ in views])
    colour = np.concatenate([colour for _, colour in views])
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir)
    name = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, "examples", "data", "duck.ply")
    header = ["ply", "format ascii 1.0",
              "comment A bath duck, made by scripts/make-scan.py. Millimetres.",
              f"element vertex {len(points)}"]
    header += [f"property float {axis}" for axis in "xyz"]
    header += [f"property uchar {colour}" for colour in ("red", "green", "blue")]
    header += ["end_header"]
    np.savetxt(name, np.hstack([points, colour]), fmt=3 * ["%.2f"] + 3 * ["%d"], comments="",
               header="\n".join(header))
    print(f"{name}: {len(points)} points")


if __name__ == "__main__":
    main()
