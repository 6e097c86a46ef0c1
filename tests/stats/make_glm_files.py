#!/usr/bin/python3
# Two files of a whole-run model, byte by byte.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_glm_files.py FOLDER (that of the fuzzer's inputs)"""
import struct
import sys


def model(corrected):
    """Two studies of 3 and 2 points, p = 3, 3 x 2 x 2 voxels, separate predictors of studies, z
    transformation by study model. Names in Latin-1, or in UTF-8 where Latin-1 can't hold them or
    would be taken for UTF-8."""
    data = struct.pack("<hh3ibbhb", 3, 0, 5, 3, 2, 2, 1, 3, corrected)
    data += struct.pack("<2f", *((0.25, -0.125) if corrected else (-2, -2)))
    data += struct.pack("<3hbib", 3, 2, 2, 0, -1, 0)
    data += struct.pack("<i", 3) + b"/d/a.fmr\0/d/a.rtc\0" + struct.pack("<i", 2) + b"/d/b.fmr\0\0"
    data += b"Predictor: 1\0" + "Füße".encode("latin-1") + b"\0" + struct.pack("<3i", 255, 0, 1)
    data += "\xc3\xa4".encode("utf-8") + b"\0" + "Кисть".encode("utf-8") + b"\0" + struct.pack("<3i", 2, 255, 0)
    data += b"Predictor: 3\0\0" + struct.pack("<3i", 255, 255, 255)
    data += struct.pack("<15f", *[i - 7.5 for i in range(15)])
    data += struct.pack("<9f", *[1 / (i + 1) for i in range(9)])
    rows = 9 + corrected  # R, total, betas, X'y, and the mean or both lag-one values
    return data + struct.pack(f"<{12 * rows}f", *[i * 0.5 - 20 for i in range(12 * rows)])


for name, corrected in (("two_studies", 0), ("two_studies_corrected", 1)):
    with open(f"{sys.argv[1]}/{name}.glm", "wb") as file:
        file.write(model(corrected))
