// The fields of a DICOM header that a run needs, and parsing them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <QString>
#include <cstdint>
#include <span>
#include <string>

/// Shared by the files of a run: a tag that is missing from a file keeps its previous value. Texts
/// hold the bytes of the file up to their first zero byte, padding included; one that is longer
/// than its limit is "<skipped>".
struct DicomHeader {
    ByteOrder metaByteOrder = ByteOrder::Little;
    ByteOrder dataByteOrder = ByteOrder::Little;
    bool explicitVR = false;
    int32_t columns = 0;               ///< (0028,0011)
    int32_t rows = 0;                  ///< (0028,0010)
    float pixelSpacingSecond = 0.0f;   ///< (0028,0030) after the backslash, millimetres
    float pixelSpacingFirst = 0.0f;    ///< (0028,0030) before the backslash, millimetres
    float sliceThickness = 0.0f;       ///< (0018,0050), millimetres
    float spacingBetweenSlices = 0.0f; ///< (0018,0088), millimetres; 0 until a file states it
    float sliceDistance = 0.0f;        ///< spacingBetweenSlices at the end of a walk
    int32_t bitsAllocated = 0;         ///< (0028,0100)
    std::string repetitionTimeText;    ///< (0018,0080), at most 10 characters
    std::string imageTypeText;         ///< (0008,0008), 100
    std::string modalityText;          ///< (0008,0060), 10
    std::string manufacturerText;      ///< (0008,0070), 50
    std::string modelNameText;         ///< (0008,1090), 50
    std::string institutionText;       ///< (0008,0080), 50
    std::string studyDescriptionText;  ///< (0008,1030), 50
    std::string seriesDescriptionText; ///< (0008,103E), 50
    std::string patientNameText;       ///< (0010,0010), 50
    std::string patientPositionText;   ///< (0018,5100), 10
    std::string imagePositionText;     ///< (0020,0032), 150
    std::string imageOrientationText;  ///< (0020,0037), 150
    std::string temporalPositionsText; ///< (0020,0105), 10
    std::string fieldStrengthText;     ///< (0018,0087), 10
    int32_t seriesNumber = 0;          ///< (0020,0011)
    int32_t acquisitionNumber = 0;     ///< (0020,0012)
    int32_t instanceNumber = 0;        ///< (0020,0013)
};

/// Walks the bytes of a file up to the first group whose low byte is above 0x28. `rawDataByteOrder`
/// receives the detected byte order. False after a message that names `fileName`; what was read up
/// to the failure stays in `header`.
[[nodiscard]] bool parseDicomHeader(std::span<const uint8_t> bytes, const QString& fileName,
                                    DicomHeader& header, ByteOrder& rawDataByteOrder);

/// The same for a file. False, after a message, also when it can't be opened or held in memory.
[[nodiscard]] bool readDicomHeader(const QString& fileName, DicomHeader& header,
                                   ByteOrder& rawDataByteOrder);

/// What renaming the files of a folder needs of each.
struct DicomIdentifiers {
    int32_t series = -1;      ///< (0020,0011)
    int32_t acquisition = -1; ///< (0020,0012)
    int32_t instance = -1;    ///< (0020,0013)
    std::string patientName;  ///< (0010,0010)

    [[nodiscard]] bool complete() const {
        return series >= 0 && acquisition >= 0 && instance >= 0 && !patientName.empty();
    }
};

/// Parses without touching the shared record. True once all four are known; false with a message if
/// there is no pixel key, without one when the header ends early.
[[nodiscard]] bool parseDicomIdentifiers(std::span<const uint8_t> bytes, const QString& fileName,
                                         DicomIdentifiers& identifiers);

/// The same for a file; false with a message when it can't be opened.
[[nodiscard]] bool readDicomIdentifiers(const QString& fileName, DicomIdentifiers& identifiers);
