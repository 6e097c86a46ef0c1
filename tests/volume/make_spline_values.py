#!/usr/bin/python3
"""Prints the values that spline_volume_test.cpp expects, from SciPy's splines."""
import numpy as np
from scipy import interpolate, ndimage

x, y, z = np.meshgrid(np.arange(6), np.arange(5), np.arange(4), indexing="ij")
samples = (37 * x * x + 101 * y * z + 53 * x * z + 211 * ((x + 2 * y + 3 * z) % 4)) % 1000
points = [(0, 0, 0), (2.25, 1.5, 1.75), (0.1, 3.9, 2.9), (4.6, 0.3, 0.5), (5, 4, 3), (3.5, 2.0, 1.0)]
for order in (3, 5):
    values = ndimage.map_coordinates(samples.astype(float), np.transpose(points), order=order, mode="mirror")
    print(order, ", ".join(f"{v:.4f}f" for v in values))

# Quintic, smoothed along x and z: the samples are coefficients there, reflected at the border.
values = ndimage.spline_filter1d(samples.astype(float), 5, axis=1, mode="mirror")
for axis, kind in enumerate(("odd", "even", "odd")):
    values = np.pad(values, [(3, 3) if i == axis else (0, 0) for i in range(3)], mode="reflect", reflect_type=kind)
bell = interpolate.BSpline.basis_element(np.arange(-3.0, 4.0), extrapolate=False)
weights = lambda place, size: np.nan_to_num(bell(place - (np.arange(size) - 3.0)))
found = [np.einsum("ijk,i,j,k", values, *(weights(p, n) for p, n in zip(point, values.shape))) for point in points]
print("smoothed", ", ".join(f"{v:.4f}f" for v in found))
