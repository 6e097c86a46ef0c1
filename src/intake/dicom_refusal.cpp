// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_refusal.h"

#include "intake/dicom_walk.h"
#include "intake/header_numbers.h"

#include <algorithm>

namespace {

struct Findings {
    std::string transferSyntax;
    std::string storageClass;
    int nrOfFrames = 1;
};

// Identifiers are padded with a zero byte; some files pad with a blank.
std::string identifier(std::span<const uint8_t> value) {
    constexpr size_t longestIdentifier = 64;
    std::string text = dicomText(value.first(std::min(value.size(), longestIdentifier)));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void collect(std::span<const uint8_t> bytes, const DicomEncoding& encoding, bool metaHeaderOnly,
             Findings& findings) {
    DicomWalk walk(bytes, encoding);
    DicomElement element;
    bool more = walk.begin() == DicomWalk::Start::Ready;
    while (more && walk.next(element) && !element.endsHeader()) {
        const auto value = walk.value(element);
        more = value.has_value() && !(metaHeaderOnly && element.group != 0x0002);
        if (!more)
            break;
        if (element.is(0x0002, 0x0010))
            findings.transferSyntax = identifier(*value);
        else if (element.is(0x0002, 0x0002) || element.is(0x0008, 0x0016))
            findings.storageClass = identifier(*value);
        else if (element.is(0x0028, 0x0008))
            findings.nrOfFrames = leadingInteger(dicomText(*value));
    }
}

Findings findingsOf(std::span<const uint8_t> bytes) {
    Findings findings;
    // The meta-header is always explicit; detection fails on one that starts without its length.
    collect(bytes, {ByteOrder::Little, true}, true, findings);
    // Compressed samples hide the encoding, but then the syntax is known by now.
    if (const auto encoding = detectEncoding(bytes, EncodingSearch::LastKeyNearStart))
        collect(bytes, *encoding, false, findings);
    return findings;
}

bool isUncompressed(const std::string& transferSyntax) {
    constexpr std::array<std::string_view, 3> plain{"1.2.840.10008.1.2", "1.2.840.10008.1.2.1",
                                                    "1.2.840.10008.1.2.2"};
    return transferSyntax.empty() || std::ranges::find(plain, transferSyntax) != plain.end();
}

} // namespace

QString unsupportedReason(std::span<const uint8_t> bytes, const QString& fileName) {
    constexpr std::string_view enhancedImageStorage = "1.2.840.10008.5.1.4.1.1.4.1";
    const Findings findings = findingsOf(bytes);
    if (!isUncompressed(findings.transferSyntax))
        return compressedMessage(fileName, QString::fromLatin1(findings.transferSyntax.c_str()));
    if (findings.storageClass == enhancedImageStorage || findings.nrOfFrames > 1)
        return QString("ERROR: File \"%1\" is an enhanced or multi-frame image; let the scanner "
                       "export classic DICOM files !")
            .arg(fileName);
    return {};
}

QString compressedMessage(const QString& fileName, const QString& transferSyntax) {
    return QString(
               "ERROR: File \"%1\" is compressed (transfer syntax %2); export it uncompressed !")
        .arg(fileName, transferSyntax);
}
