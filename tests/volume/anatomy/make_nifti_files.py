#!/usr/bin/env python3
"""Writes the NIfTI files of the tests with nibabel, and prints what the tests expect of them.

SPDX-License-Identifier: GPL-3.0-or-later
"""
import gzip
import pathlib

import nibabel
import numpy as np
from nibabel.eulerangles import euler2mat

TREE = pathlib.Path(__file__).resolve().parents[3]
FILES = TREE / "tests/fuzz/corpus/nifti"
CENTRE = 127.5


def header(version, endianness, kind, shape):
    made = (nibabel.Nifti1Header if version == 1 else nibabel.Nifti2Header)(endianness=endianness)
    made.set_data_dtype(kind)
    made.set_data_shape(shape)
    made["magic"] = b"n+1" if version == 1 else b"n+2\0\r\n\032\n"
    made["vox_offset"] = 352 if version == 1 else 544
    return made


def content(made, samples):
    stored = samples.astype(made.get_data_dtype())
    return made.binaryblock + bytes(4) + stored.tobytes(order="F")


def write(name, data):
    if name.endswith(".gz"):
        data = gzip.compress(data, mtime=0)
    (FILES / name).write_bytes(data)


def kinds():
    """Samples 0 to 23, less 8 where there is a sign, at half their size and less 3."""
    names = ["uint8", "int8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "float32",
             "float64"]
    for number, name in enumerate(names):
        for version, endianness in ((1, "<>"[number % 2]), (2, "><"[number % 2])):
            made = header(version, endianness, name, (2, 3, 4, 2))
            made.set_slope_inter(0.5, -3)
            samples = np.arange(48).reshape((2, 3, 4, 2), order="F")
            if not name.startswith("u"):
                samples = samples - 8
            write(f"{name}_{version}.nii", content(made, samples))
    made = header(1, "<", "float32", (4, 1, 1))
    made.set_slope_inter(np.nan, np.nan)
    write("not_finite.nii", content(made, np.array([1.5, np.nan, np.inf, -2.5])))


def affine(angles, sizes, origin):
    matrix = np.eye(4)
    matrix[:3, :3] = euler2mat(*angles) @ np.diag(sizes)
    matrix[:3, 3] = origin
    return matrix


def marked(name, version, endianness, sform, qform, marker, counts):
    """A volume with one bright voxel. Prints where it lies in the cube by the matrix that counts."""
    shape = (20, 24, 11)
    made = header(version, endianness, "int16", shape)
    made.set_sform(*sform) if sform else made.set_sform(None)
    made.set_qform(*qform) if qform else made.set_qform(None)
    samples = np.zeros(shape)
    samples[marker] = 1000
    write(name, content(made, samples))
    matrix = made.get_sform() if counts == "sform" else made.get_qform()
    middle = nibabel.affines.apply_affine(matrix, (np.array(shape) - 1) / 2)
    right, front, up = nibabel.affines.apply_affine(matrix, marker) - middle
    cube = np.array([CENTRE - front, CENTRE - up, CENTRE - right])
    first = np.array([-middle[0] - CENTRE, -middle[1], middle[2]])
    numbers = ", ".join(f"{value:.3f}f" for value in (*cube, *first))
    print(f'{{"{name}", {numbers}}},')


def places():
    tilted = affine((0.3, -0.2, 0.5), (3, 2.5, 4), (-20, 35, -12))
    mirrored = affine((-0.4, 0.1, 2.5), (3, 2.5, -4), (10, -35, 22))
    other = affine((0, 0, 0), (2, 2, 2), (0, 0, 0))
    marked("sform.nii.gz", 1, "<", (tilted, 1), (other, 1), (4, 18, 2), "sform")
    marked("qform.nii.gz", 2, ">", None, (mirrored, 1), (15, 3, 9), "qform")
    marked("atlas_and_scanner.nii.gz", 1, ">", (other, 4), (tilted, 2), (2, 5, 8), "qform")
    marked("atlas.nii.gz", 1, "<", (tilted, 3), None, (2, 5, 8), "sform")


def exported_header():
    """Of the run of the export test: its image header says where the first voxel lies."""
    row, column = euler2mat(0.2, 0.1, -0.3)[:, :2].T
    stack = -np.cross(row, column)
    corner = np.array([-30.0, 20.0, 45.0])
    patient = np.eye(4)
    patient[:3, 0], patient[:3, 1], patient[:3, 2] = row * 2.5, column * 3, stack * 4.5
    patient[:3, 3] = corner
    made = header(1, "<", "uint16", (5, 4, 3, 2))
    matrix = np.diag([-1, -1, 1, 1]) @ patient
    made.set_sform(matrix, 1)
    made.set_qform(matrix, 1)
    made["pixdim"][4] = 1.5
    made.set_xyzt_units("mm", "sec")
    made.set_dim_info(slice=2)
    made.set_slope_inter(1, 0)
    made["descrip"] = b"run-"
    (TREE / "tests/volume/anatomy/exported_header.bin").write_bytes(made.binaryblock)
    for name, vector in (("row", row), ("column", column), ("stack", stack)):
        print(name, ", ".join(f"{value:.7f}f" for value in vector))


FILES.mkdir(parents=True, exist_ok=True)
kinds()
places()
exported_header()
