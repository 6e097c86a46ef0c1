#!/usr/bin/python3
# What an independent DICOM reader finds in real GE series, as the table of ge_dicom_reader_test.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_expected_ge.py FOLDER > expected_ge.tsv

FOLDER holds the scanner files below ge_dicom/. Needs pydicom and NumPy.
"""
import hashlib
import pathlib
import sys

import numpy
import pydicom

SERIES = {"run_20_volumes/e123/s1925": 18, "four_slices/001": 4, "four_slices/001_implicit": 4}


def centre(data):
    row, column = numpy.split(numpy.array(data.ImageOrientationPatient, float), 2)
    height, width = data.Rows * data.PixelSpacing[0], data.Columns * data.PixelSpacing[1]
    return numpy.array(data.ImagePositionPatient, float) + (row * width + column * height) / 2


def row_of(name, files):
    slices = [pydicom.dcmread(path) for path in files]
    first, last = slices[0], slices[-1]
    volume = numpy.stack([data.pixel_array for data in slices]).astype("<u2")
    thickness = float(first.get("SliceThickness", 0))
    numbers = [first.Columns, first.Rows, len(slices), float(first.PixelSpacing[1]),
               float(first.PixelSpacing[0]), thickness,
               float(first.get("SpacingBetweenSlices", thickness)) - thickness, *centre(first),
               *centre(last), *map(float, first.ImageOrientationPatient)]
    digest = hashlib.sha256(volume.tobytes()).hexdigest()
    return "\t".join([name, digest] + [f"{number:.9g}" for number in numbers])


def main():
    print("# folder, SHA-256 of the volume (little endian), then: columns, rows, slices, pixel size x "
          "and y, thickness (0 not stated), gap, first centre, last centre, row direction, column "
          "direction")
    for name, slices in SERIES.items():
        files = sorted((pathlib.Path(sys.argv[1]) / "ge_dicom" / name).iterdir())
        for start in range(0, len(files), slices):
            print(row_of(name, files[start:start + slices]))


main()
