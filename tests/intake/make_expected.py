#!/usr/bin/python3
# What an independent DICOM reader finds in real mosaics, as the table of real_series_test.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_expected.py FOLDER > expected_mosaics.tsv

FOLDER holds the scanner files below siemens_mosaic/ and dicom_odd/. Needs pydicom and NumPy.
"""
import hashlib
import math
import pathlib
import re
import sys
import warnings

import numpy
import pydicom

warnings.simplefilter("ignore")
UNCOMPRESSED = {"1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2"}


def protocol_of(path):
    """All assignments of the first protocol block that has slices."""
    text = path.read_bytes().decode("latin-1")
    for block in re.findall(r"### ASCCONV BEGIN.*?### ASCCONV END", text, re.S):
        found = dict(re.findall(r"^([\w.\[\]]+)[ \t]*=[ \t]*([^\s]+)", block, re.M))
        if "sSliceArray.lSize" in found:
            return found
    return None


def slice_centre(protocol, index):
    axes = ("dSag", "dCor", "dTra")
    return [float(protocol.get(f"sSliceArray.asSlice[{index}].sPosition.{axis}", 0)) for axis in axes]


def end_centres(protocol, slices, data):
    """Of the first and the last tile. The first is that end of the list whose level the tags name."""
    centres = [slice_centre(protocol, 0), slice_centre(protocol, slices - 1)]
    row, column = numpy.array(data.ImageOrientationPatient, float).reshape(2, 3)
    level = numpy.cross(row, column)
    place = numpy.dot(level, numpy.array(data.ImagePositionPatient, float))
    return sorted(centres, key=lambda centre: abs(numpy.dot(level, centre) - place))


def order_code(text, slices):
    # Hexadecimal up to B17, decimal later.
    code = {1: 1, 2: 2, 4: 3}.get(int(text, 0), 0)
    return 5 if code == 3 and slices % 2 == 0 else code


def split(image, slices):
    tiles = math.ceil(math.sqrt(slices))
    height, width = image.shape[0] // tiles, image.shape[1] // tiles
    parts = image.reshape(tiles, height, tiles, width).swapaxes(1, 2).reshape(-1, height, width)
    return parts[:slices], width, height


def row_of(path, name):
    data = pydicom.dcmread(path, force=True)
    syntax = getattr(data.file_meta, "TransferSyntaxUID", None)
    if syntax is None:
        data.file_meta.TransferSyntaxUID = ("1.2.840.10008.1.2" if data.is_implicit_VR else
                                            "1.2.840.10008.1.2.1" if data.is_little_endian else
                                            "1.2.840.10008.1.2.2")
    elif syntax not in UNCOMPRESSED:
        return None
    protocol = protocol_of(path)
    if protocol is None or "NumberOfFrames" in data:
        return None
    slices = int(protocol["sSliceArray.lSize"])
    volume, width, height = split(data.pixel_array, slices)
    first, last = end_centres(protocol, slices, data)
    digest = hashlib.sha256(numpy.ascontiguousarray(volume).astype("<u2").tobytes()).hexdigest()
    repetition = float(protocol["alTR[0]"]) / 1000
    thickness = float(data.get("SliceThickness", 0))
    numbers = [data.Columns, data.Rows, width, height, slices, round(repetition),
               math.floor(round(repetition) / slices), round(float(protocol["alTE[0]"]) / 1000),
               order_code(protocol["sSliceArray.ucMode"], slices),
               float(data.PixelSpacing[1]), float(data.PixelSpacing[0]), thickness,
               float(data.SpacingBetweenSlices) - thickness,
               *first, *last, *map(float, data.ImageOrientationPatient)]
    return "\t".join([name, digest] + [f"{number:.9g}" for number in numbers])


def main():
    root = pathlib.Path(sys.argv[1])
    print("# file, SHA-256 of the volume (little endian), then: mosaic columns and rows, matrix "
          "columns and rows, slices, TR, inter-slice time, TE, slice order (0 not verified), pixel "
          "size x and y, thickness, gap, first centre, last centre, row direction, column direction")
    folders = ("siemens_mosaic", "dicom_odd/one_mosaic_in_many_encodings")
    for path in sorted(p for folder in folders for p in (root / folder).rglob("*") if p.is_file()):
        try:
            row = row_of(path, str(path.relative_to(root)))
        except (pydicom.errors.InvalidDicomError, AttributeError, KeyError, NotImplementedError) as e:
            print(path, repr(e), file=sys.stderr)
            continue
        if row:
            print(row)


main()
