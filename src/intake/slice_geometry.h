// Slice positions and directions from the texts of a DICOM header.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_header.h"
#include "volume/fmr_project.h"

/// Which slice a position belongs to.
enum class SliceEnd { First = 1, Last = 2 };

/// Parses three numbers separated by backslashes into sliceCenterFirst or sliceCenterLast. The
/// header gives a corner of the slice; the caller moves it to the centre. False, with nothing
/// changed, when there are fewer or one is not a number.
[[nodiscard]] bool parseImagePosition(const std::string& text, SliceEnd which,
                                      FMRPositionInfo& position);

/// Parses six numbers into rowDirection and columnDirection. False as for the position.
[[nodiscard]] bool parseImageOrientation(const std::string& text, FMRPositionInfo& position);

/// Centre of an image of this width and height (millimetres), from its corner and the directions in
/// `position`.
[[nodiscard]] Vector3 imageCentre(const Vector3& corner, const FMRPositionInfo& position,
                                  float width, float height);

/// Centres of the first and last slice of a mosaic whose protocol block doesn't state them, from a
/// parsed header and from pixel sizes, thickness, gap and NrOfSlices of the project. The position
/// of a mosaic is the corner of the whole mosaic, so half of its size leads to the common centre;
/// the last slice is NrOfSlices (not one less) distances further. False for another manufacturer or
/// without a position.
[[nodiscard]] bool computeMosaicGeometry(const DicomHeader& header, FMRProject& project);

/// The same from a file, whose header is parsed into the shared record first.
[[nodiscard]] bool computeMosaicGeometry(const QString& fileName, DicomHeader& header,
                                         ByteOrder& rawDataByteOrder, FMRProject& project);
