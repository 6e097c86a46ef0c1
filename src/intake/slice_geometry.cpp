// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/slice_geometry.h"

#include "base/text_reading.h"
#include "intake/header_numbers.h"
#include "volume/vectors.h"

namespace {

// The first `count` fields as numbers; empty when one is missing or not a number.
std::vector<float> numbersOf(const std::string& text, size_t count) {
    const std::vector<std::string_view> fields = backslashFields(text);
    if (fields.size() < count)
        return {};
    std::vector<float> numbers;
    for (size_t i = 0; i < count; ++i) {
        const std::string_view field = trimmedHeaderText(fields[i]);
        if (field.find_first_of("0123456789") == std::string_view::npos)
            return {};
        numbers.push_back(leadingFloat(field));
    }
    return numbers;
}

Vector3 vectorAt(const std::vector<float>& numbers, size_t start) {
    return {numbers[start], numbers[start + 1], numbers[start + 2]};
}

} // namespace

bool parseImagePosition(const std::string& text, SliceEnd which, FMRPositionInfo& position) {
    const std::vector<float> numbers = numbersOf(text, 3);
    if (numbers.empty())
        return false;
    (which == SliceEnd::First ? position.sliceCenterFirst : position.sliceCenterLast) =
        vectorAt(numbers, 0);
    return true;
}

bool parseImageOrientation(const std::string& text, FMRPositionInfo& position) {
    const std::vector<float> numbers = numbersOf(text, 6);
    if (numbers.empty())
        return false;
    position.rowDirection = vectorAt(numbers, 0);
    position.columnDirection = vectorAt(numbers, 3);
    return true;
}

Vector3 imageCentre(const Vector3& corner, const FMRPositionInfo& position, float width,
                    float height) {
    return moved(moved(corner, position.rowDirection, width * 0.5f), position.columnDirection,
                 height * 0.5f);
}

bool computeMosaicGeometry(const DicomHeader& header, FMRProject& project) {
    const QString maker = QString::fromLatin1(header.manufacturerText.c_str());
    const std::vector<float> corner = numbersOf(header.imagePositionText, 3);
    if (corner.empty() || !maker.contains("Siemens", Qt::CaseInsensitive))
        return false;
    FMRPositionInfo& position = project.position;
    const Vector3& row = position.rowDirection;
    const Vector3& column = position.columnDirection;
    const Vector3 normal = normalised(cross(normalised(row), normalised(column)));
    position.sliceCenterFirst =
        imageCentre(vectorAt(corner, 0), position, float(header.columns) * project.pixelSizeX,
                    float(header.rows) * project.pixelSizeY);
    position.sliceCenterLast = moved(position.sliceCenterFirst, normal,
                                     float(project.NrOfSlices) * project.sliceDistance());
    return true;
}

bool computeMosaicGeometry(const QString& fileName, DicomHeader& header,
                           ByteOrder& rawDataByteOrder, FMRProject& project) {
    return readDicomHeader(fileName, header, rawDataByteOrder) &&
           computeMosaicGeometry(header, project);
}
