#!/usr/bin/env python3
"""Writes the files that anatomy_files_test.cpp and the fuzzer read, field by field with struct.

Usage: make_anatomy_files.py FOLDER, where FOLDER is tests/fuzz/corpus.
"""
# SPDX-License-Identifier: GPL-3.0-or-later
import pathlib
import struct
import sys

FOLDER = pathlib.Path(sys.argv[1])


def save(name, content):
    if isinstance(content, str):
        content = content.encode()
    path = FOLDER / name.rsplit(".", 1)[1] / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def words(*values):
    return struct.pack(f"<{len(values)}H", *values)


def place(first=-10.5):
    """Valid, system 1, centres, directions, 256 rows and columns, fields of view, thickness, gap."""
    centres_and_directions = [first, 2, 3, 10.5, 5, 6, 0, 1, 0, 0, 0, -1]
    return (struct.pack("<2i12f", 1, 1, *centres_and_directions)
            + struct.pack("<2i4f", 256, 256, 240, 250, 1, 0))


def transformations(*names):
    result = struct.pack("<i", len(names))
    for name in names:
        result += name + b"\0" + struct.pack("<i", 2) + b"source.vmr\0" + struct.pack("<i2f", 2, 1.5, -2)
    return result


voxels = bytes(range(12))  # 3 x 2 x 2
save("old.vmr", words(1, 3, 2) + bytes(range(20, 26)))
save("old_11.vmr", words(11, 1, 2) + bytes(range(22)))
save("prefix.vmr", words(0, 3, 3, 2, 2) + voxels + bytes(range(100, 112)))
save("prefix_cut.vmr", words(0, 3, 3, 2, 2) + voxels + bytes(11))
save("version2.vmr", words(2, 3, 2, 2) + voxels + place() + transformations(b"turn", b"")
     + bytes([1, 0, 7]))
save("version2_bare.vmr", words(2, 3, 2, 2) + voxels)
save("version3.vmr", words(3, 3, 2, 2) + voxels + words(9, 9, 9, 9) + place() + transformations()
     + bytes([2, 5, 0]))
save("version4.vmr", words(4, 3, 2, 2) + voxels + words(9, 9, 9, 9) + place()
     + transformations(b"one") + bytes([1, 2, 0, 1]))
save("version4_short.vmr", words(4, 3, 2, 2) + voxels + words(9, 9, 9, 9) + place() + bytes([9] * 6))
save("nan_place.vmr", words(4, 3, 2, 2) + voxels + words(9, 9, 9, 9) + place(float("nan")))
for name, end in [("many_transformations", struct.pack("<I3B", 2**32 - 1, 0, 0, 0)),
                  ("many_values", struct.pack("<i", 1) + b"a\0\0\0\0\0b\0" + b"\xff" * 4),
                  ("endless_name", struct.pack("<i", 1) + b"n" * 40),
                  ("cut_place", None)]:
    behind = place() + end if end else place()[:50]
    save(name + ".vmr", words(2, 3, 2, 2) + voxels + behind)
save("version5.vmr", words(5, 3, 2, 2) + voxels)
save("flat.vmr", words(1, 3, 0))
save("cut.vmr", words(1, 3, 2) + bytes(5))
save("huge.vmr", words(65535, 65535, 65535) + bytes(9))

POSITIONS = """{first}SliceNCenterX: 1.5 SliceNCenterY: -2 SliceNCenterZ: 30.25
RowX: 1 RowY: 0 RowZ: 0
ColumnX: 0 ColumnY: 0.6 ColumnZ: -0.8
Rows: 128
Columns: 64
FoVRows: 256
FoVColumns: 192.5
SliceThickness: 3
GapThickness: 0.75
"""
FIRST = "Slice1CenterX: -4.5 Slice1CenterY: 8 Slice1CenterZ: -20\n"
HEAD = "FileVersion: {}\nSourceFile: {}\nCoordinateSystem: 2\n"
save("version3.pos", HEAD.format(3, '"run one.dcm"') + POSITIONS.format(first=FIRST))
save("version2.pos", HEAD.format(2, "run.dcm") + POSITIONS.format(first=""))
save("version1.pos", "CoordinateSystem: 3\n" + POSITIONS.format(first=""))
save("huge_number.pos", HEAD.format(3, "a") + POSITIONS.format(first=FIRST.replace("8", "1e300")))

MATRIX = [[1, 0, 0, 0.1], [0, -0.5, 1e-7, -12345.675], [0, 2.25, 1, 3], [0, 0, 0, 1]]
single = [[struct.unpack("f", struct.pack("f", value))[0] for value in row] for row in MATRIX]
ROWS = "".join(" ".join(f"{value:20.16f}" for value in row) + "\n" for row in single)
SECOND = "1 0 0 7\n0 1 0 8\n0 0 1 9\n0 0 0 1\n"
MATRIX_HEAD = "FileVersion: {}\nDataFormat: Matrix\n" + ROWS
OTHER = "TransformationType: 1\nCoordinateSystem: 1\nVolumes: 4\nShiftX: 0.5\nShiftY: 0.25\nFlag: 1\n"
save("version5.trf", "\nFileVersion:        5\n\nDataFormat:         Matrix\n\n" + ROWS
     + "\nTransformationType: 2\nCoordinateSystem:   0\n\n"
     + 'SourceFile:         "a b.fmr"\nTargetFile:         "\'c\'.vmr"\n')
save("version2.trf", MATRIX_HEAD.format(2) + "TransformationType: 2\nCoordinateSystem: 0\n")
save("version3.trf", "FileVersion: 3\n" + OTHER)
save("version4.trf", MATRIX_HEAD.format(4) + OTHER + "Flag: 1\n")
save("two_matrices.trf", MATRIX_HEAD.format(5) + OTHER + "Flag: 1\nMatrices: 1\n" + SECOND)
save("one_of_two.trf", MATRIX_HEAD.format(5) + OTHER + "Flag: 1\nMatrices: 0\n")
for space in ["ACPC", "aACPC", "TAL"]:
    save(f"brain_{space}.trf", MATRIX_HEAD.format(6) + "TransformationType: 2\nCoordinateSystem: 0\n"
         + "ACPCVMRFramingCube: 384\nResolution: 0.5\n")
save("other_format.trf", "FileVersion: 4\nDataFormat: Parameters\nType: 2\nSystem: 0\n")
save("not_a_number.trf", MATRIX_HEAD.format(5).replace("12345", "nan")
     + "TransformationType: 2\nCoordinateSystem: 0\n")

NAMES = ["AC", "PC", "AP", "PP", "SP", "IP", "LP", "RP"]
POINTS = "".join(f"{name}: {i + 1} {10 * i} {-i}\n" for i, name in enumerate(NAMES))
save("version1.tal", "VMRFile: my first brain.vmr \n" + POINTS)
save("version1_stated.tal", "FileVersion: 1\nVMRFile: my first brain.vmr\n" + POINTS)
save("version2.tal", '\nFileVersion: 2\nVMRFile: "my brain.vmr"\n' + POINTS + "Cube: 256\nVoxel: 1.0\n")
