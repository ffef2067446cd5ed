# %% [markdown]
# # From scattered measurements to pictures
# A room of 6 x 4 x 3 metres with a stove in it. The temperature was measured at 3,000 places, more of
# them near the stove. Run it as it stands, or cell by cell in an editor that knows `# %%`.
#
# Needs numpy and matplotlib (Debian: python3-numpy, python3-matplotlib).

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np
import varn3d

random = np.random.default_rng(1)
stove = np.array([1.5, 2.0, 0.8])
places = np.vstack([
    random.uniform([0, 0, 0], [6, 4, 3], (1500, 3)),
    np.clip(random.normal(stove, 0.5, (1500, 3)), [0, 0, 0], [6, 4, 3]),
])


def temperature(at):
    away = np.linalg.norm(at - stove, axis=-1)
    return 17 + 1.5 * at[..., 2] + 40 / (1 + 4 * away**2)


measured = temperature(places)

# %% [markdown]
# The mesh connects the places. Interpolation in its tetrahedra tells the temperature anywhere between
# them; outside their hull there is nothing to tell, and the result is NaN.

# %%
mesh = varn3d.Delaunay(places)
x, z = np.meshgrid(np.linspace(-0.2, 6.2, 640), np.linspace(-0.2, 3.2, 340))
section = np.stack([x, np.full_like(x, stove[1]), z], axis=-1)
interpolated = mesh.interpolate(measured, section)
inside = np.isfinite(interpolated)
error = np.abs(interpolated - temperature(section))[inside]
print(f"{len(mesh.simplices)} tetrahedra; half of the section is right to {np.median(error):.2f} degrees")

# %% [markdown]
# How much room does each measurement stand for? That is the volume of its Voronoi cell, the space that
# is nearer to it than to any other. The places on the hull have unbounded cells.

# %%
room = mesh.voronoi_volumes()
nearest = mesh.nearest_vertex(section)
bounded = np.isfinite(room)
print(f"{bounded.sum()} bounded cells, from {room.min() * 1e6:.0f} cubic centimetres up")

# %%
figure, axes = plt.subplots(3, 1, figsize=(7, 10.5), sharex=True, constrained_layout=True)
extent = [-0.2, 6.2, -0.2, 3.2]
near = np.abs(places[:, 1] - stove[1]) < 0.2
axes[0].set_title("measured within 20 cm of the section")
dots = axes[0].scatter(places[near, 0], places[near, 2], c=measured[near], s=9, cmap="inferno")
axes[1].set_title("interpolated")
axes[1].imshow(interpolated, origin="lower", extent=extent, cmap="inferno", clim=dots.get_clim())
figure.colorbar(dots, ax=axes[:2], label="degrees Celsius")
axes[2].set_title("Voronoi cells, by their volume")
cells = axes[2].imshow(np.log10(room)[nearest], origin="lower", extent=extent, vmax=-0.5)
figure.colorbar(cells, ax=axes[2], label="log10 of cubic metres", extend="max")
for axis in axes:
    axis.set(xlim=extent[:2], ylim=extent[2:], aspect="equal", ylabel="height")
if len(sys.argv) > 1:
    figure.savefig(sys.argv[1], dpi=90)
else:
    plt.show()
