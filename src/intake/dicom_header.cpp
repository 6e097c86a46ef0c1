// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_header.h"

#include "base/messages.h"
#include "intake/dicom_walk.h"
#include "intake/file_bytes.h"
#include "intake/header_numbers.h"

#include <algorithm>

namespace {

constexpr uint32_t tagOf(uint16_t group, uint16_t number) {
    return (uint32_t(group) << 16) | number;
}

constexpr const char* skippedText = "<skipped>";
constexpr uint32_t patientNameLimit = 50;

struct TextField {
    uint32_t tag;
    uint32_t limit;
    std::string DicomHeader::*field;
};

constexpr std::array textFields{
    TextField{tagOf(0x0008, 0x0008), 100, &DicomHeader::imageTypeText},
    TextField{tagOf(0x0008, 0x0060), 10, &DicomHeader::modalityText},
    TextField{tagOf(0x0008, 0x0070), 50, &DicomHeader::manufacturerText},
    TextField{tagOf(0x0008, 0x0080), 50, &DicomHeader::institutionText},
    TextField{tagOf(0x0008, 0x1030), 50, &DicomHeader::studyDescriptionText},
    TextField{tagOf(0x0008, 0x103E), 50, &DicomHeader::seriesDescriptionText},
    TextField{tagOf(0x0008, 0x1090), 50, &DicomHeader::modelNameText},
    TextField{tagOf(0x0010, 0x0010), patientNameLimit, &DicomHeader::patientNameText},
    TextField{tagOf(0x0018, 0x0080), 10, &DicomHeader::repetitionTimeText},
    TextField{tagOf(0x0018, 0x0087), 10, &DicomHeader::fieldStrengthText},
    TextField{tagOf(0x0018, 0x5100), 10, &DicomHeader::patientPositionText},
    TextField{tagOf(0x0020, 0x0032), 150, &DicomHeader::imagePositionText},
    TextField{tagOf(0x0020, 0x0037), 150, &DicomHeader::imageOrientationText},
    TextField{tagOf(0x0020, 0x0105), 10, &DicomHeader::temporalPositionsText},
};

struct LengthField {
    uint32_t tag;
    float DicomHeader::*field;
};

constexpr std::array lengthFields{
    LengthField{tagOf(0x0018, 0x0050), &DicomHeader::sliceThickness},
    LengthField{tagOf(0x0018, 0x0088), &DicomHeader::spacingBetweenSlices},
};

struct NumberField {
    uint32_t tag;
    int32_t DicomHeader::*field;
};

constexpr std::array numberFields{
    NumberField{tagOf(0x0020, 0x0011), &DicomHeader::seriesNumber},
    NumberField{tagOf(0x0020, 0x0012), &DicomHeader::acquisitionNumber},
    NumberField{tagOf(0x0020, 0x0013), &DicomHeader::instanceNumber},
};

struct BinaryField {
    uint32_t tag;
    int32_t DicomHeader::*field;
    const char* wrongLength;
};

constexpr const char* rowsMessage =
    "CRITICAL ERROR: Inconsistent information in DICOM file at \"Rows\" key (0028,0010)!";
constexpr const char* columnsMessage =
    "CRITICAL ERROR: Inconsistent information in DICOM file at \"Columns\" key (0028,0011)!";

constexpr std::array binaryFields{
    BinaryField{tagOf(0x0028, 0x0010), &DicomHeader::rows, rowsMessage},
    BinaryField{tagOf(0x0028, 0x0011), &DicomHeader::columns, columnsMessage},
    // The text names another key, but operators know it like this.
    BinaryField{tagOf(0x0028, 0x0100), &DicomHeader::bitsAllocated, columnsMessage},
};

constexpr uint32_t pixelSpacingTag = tagOf(0x0028, 0x0030);

template<typename Fields> auto entryFor(const Fields& fields, uint32_t tag) {
    const auto entry = std::ranges::find(fields, tag, [](const auto& field) { return field.tag; });
    return entry == fields.end() ? nullptr : &*entry;
}

bool failWith(const QString& text) {
    showWarning(text);
    return false;
}

bool failPastEnd() {
    return failWith("ERROR: Read past the end of file, can not read file as regular DICOM!");
}

std::string limitedText(std::span<const uint8_t> value, uint32_t limit) {
    return value.size() > limit ? std::string(skippedText) : dicomText(value);
}

void takePixelSpacing(const std::string& text, DicomHeader& header) {
    const size_t cut = text.find('\\');
    const std::string_view whole(text);
    const std::string_view second = cut == std::string::npos ? whole : whole.substr(cut + 1);
    header.pixelSpacingFirst = leadingFloat(trimmedHeaderText(whole.substr(0, cut)));
    header.pixelSpacingSecond = leadingFloat(trimmedHeaderText(second));
}

bool takeBinary(const BinaryField& entry, std::span<const uint8_t> value, ByteOrder order,
                DicomHeader& header) {
    if (value.size() != 2) {
        showCritical(entry.wrongLength);
        return false;
    }
    header.*entry.field = ByteReader(value, order).u16();
    return true;
}

// Stores the value if its tag belongs to the record. False after a message.
bool takeValue(uint32_t tag, std::span<const uint8_t> value, ByteOrder order, DicomHeader& header) {
    if (const TextField* text = entryFor(textFields, tag))
        header.*text->field = limitedText(value, text->limit);
    else if (const LengthField* length = entryFor(lengthFields, tag))
        header.*length->field = leadingFloat(dicomText(value));
    else if (const NumberField* number = entryFor(numberFields, tag))
        header.*number->field = leadingInteger(dicomText(value));
    else if (const BinaryField* binary = entryFor(binaryFields, tag))
        return takeBinary(*binary, value, order, header);
    else if (tag == pixelSpacingTag)
        takePixelSpacing(dicomText(value), header);
    return true;
}

bool walkHeader(DicomWalk& walk, DicomHeader& header) {
    DicomElement element;
    while (walk.next(element)) {
        if (element.endsHeader()) {
            if (header.spacingBetweenSlices >= 0.0f && header.sliceThickness >= 0.0f)
                header.sliceDistance = header.spacingBetweenSlices;
            return true;
        }
        const auto value = walk.value(element);
        if (!value)
            break;
        if (!takeValue(tagOf(element.group, element.number), *value, walk.byteOrder(), header))
            return false;
    }
    return failPastEnd();
}

void takeIdentifier(uint32_t tag, std::span<const uint8_t> value, DicomIdentifiers& identifiers) {
    switch (tag) {
    case tagOf(0x0010, 0x0010):
        identifiers.patientName = limitedText(value, patientNameLimit);
        break;
    case tagOf(0x0020, 0x0011):
        identifiers.series = leadingInteger(dicomText(value));
        break;
    case tagOf(0x0020, 0x0012):
        identifiers.acquisition = leadingInteger(dicomText(value));
        break;
    case tagOf(0x0020, 0x0013):
        identifiers.instance = leadingInteger(dicomText(value));
        break;
    default:
        break;
    }
}

bool isIdentifier(const DicomElement& element) {
    return element.is(0x0010, 0x0010) ||
           (element.group == 0x0020 && element.number >= 0x0011 && element.number <= 0x0013);
}

bool failWithoutMemory(const QString& fileName) {
    return failWith("ERROR: Could not allocate memory to read DICOM file:" + fileName + " !");
}

} // namespace

bool parseDicomHeader(std::span<const uint8_t> bytes, const QString& fileName, DicomHeader& header,
                      ByteOrder& rawDataByteOrder) {
    const auto encoding = detectEncoding(bytes, EncodingSearch::LastKeyNearStart);
    if (!encoding)
        return failWith(
            QString("INFO: The file \"%1\" appears not to be a Dicom file!").arg(fileName));
    rawDataByteOrder = encoding->byteOrder;
    header.dataByteOrder = encoding->byteOrder;
    header.metaByteOrder = encoding->byteOrder;
    header.explicitVR = encoding->explicitVR;

    DicomWalk walk(bytes, *encoding);
    switch (walk.begin()) {
    case DicomWalk::Start::TooShort:
        return failWith("ERROR: Can not set file pointer in file !");
    case DicomWalk::Start::NoMetaHeader:
        return failWith("ERROR: Could not find expected metaheader group (02,00) in DICOM file!");
    case DicomWalk::Start::Ready:
        break;
    }
    header.metaByteOrder = walk.metaByteOrder().value_or(encoding->byteOrder);
    return walkHeader(walk, header);
}

bool readDicomHeader(const QString& fileName, DicomHeader& header, ByteOrder& rawDataByteOrder) {
    FileBytes file;
    switch (file.read(fileName)) {
    case FileBytes::Result::CannotOpen:
        return failWith(QString("ERROR - Can not open DICOM file: \"%1\" !").arg(fileName));
    case FileBytes::Result::NoMemory:
        return failWithoutMemory(fileName);
    case FileBytes::Result::Done:
        break;
    }
    return parseDicomHeader(file.bytes(), fileName, header, rawDataByteOrder);
}

bool parseDicomIdentifiers(std::span<const uint8_t> bytes, const QString& fileName,
                           DicomIdentifiers& identifiers) {
    identifiers = {};
    const auto encoding = detectEncoding(bytes, EncodingSearch::FirstKey);
    if (!encoding)
        return failWith(QString("ERROR: File \"%1\" is not a DICOM file!").arg(fileName));
    DicomWalk walk(bytes, *encoding);
    DicomElement element;
    bool more = walk.begin() == DicomWalk::Start::Ready;
    while (more && walk.next(element)) {
        const auto value = walk.value(element);
        more = value.has_value();
        if (!more)
            break;
        // Tested only after unwanted elements: a file that ends right after the fourth identifier
        // may be truncated.
        if (isIdentifier(element))
            takeIdentifier(tagOf(element.group, element.number), *value, identifiers);
        else if (identifiers.complete())
            return true;
    }
    return false;
}

bool readDicomIdentifiers(const QString& fileName, DicomIdentifiers& identifiers) {
    FileBytes file;
    switch (file.read(fileName)) {
    case FileBytes::Result::CannotOpen:
        return failWith(QString("Error: File \"%1\" not found!").arg(fileName));
    case FileBytes::Result::NoMemory:
        return failWithoutMemory(fileName);
    case FileBytes::Result::Done:
        break;
    }
    return parseDicomIdentifiers(file.bytes(), fileName, identifiers);
}
