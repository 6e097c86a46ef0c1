// Walking through the elements of a DICOM file, in any encoding.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <optional>

/// How the data set of a file is encoded.
struct DicomEncoding {
    ByteOrder byteOrder = ByteOrder::Little;
    bool explicitVR = false;
};

/// Which of several pixel keys determines the encoding.
enum class EncodingSearch {
    FirstKey,         ///< the first one of the file
    LastKeyNearStart, ///< the last one before about 200000 bytes were tested
};

/// Derives the encoding from the pixel key (7FE0,0010): its byte order, and whether "OW" follows.
/// Nothing without a key.
[[nodiscard]] std::optional<DicomEncoding> detectEncoding(std::span<const uint8_t> bytes,
                                                          EncodingSearch search);

struct DicomElement {
    uint16_t group = 0;
    uint16_t number = 0;
    uint32_t length = 0; ///< bytes of the value that follows; 0 for a skipped sequence

    [[nodiscard]] bool is(uint16_t wantedGroup, uint16_t wantedNumber) const {
        return group == wantedGroup && number == wantedNumber;
    }
    /// Groups with a low byte above 0x28 hold nothing that a run needs.
    [[nodiscard]] bool endsHeader() const { return (group & 0xFF) > 0x28; }
};

/// Walks over top-level elements. Sequences of undefined length are skipped.
class DicomWalk {
public:
    enum class Start {
        Ready,
        TooShort,     ///< the file ends before the place of the mark "DICM"
        NoMetaHeader, ///< "DICM" is not followed by group 0002
    };

    DicomWalk(std::span<const uint8_t> bytes, const DicomEncoding& encoding)
        : reader_(bytes), encoding_(encoding), order_(encoding.byteOrder),
          metaExplicit_(encoding.explicitVR) {}

    /// Finds the first element: after the mark "DICM", or at offset 0 in a file without it.
    [[nodiscard]] Start begin();
    /// Reads the header of the next element and moves to its value. False when the file ends there
    /// or the length is above what a header may hold.
    [[nodiscard]] bool next(DicomElement& element);
    /// Skips the value of the element. False when it reaches beyond the end.
    [[nodiscard]] bool skip(const DicomElement& element) { return reader_.skip(element.length); }
    /// Reads the value of the element and moves past it. Nothing when it reaches beyond the end.
    [[nodiscard]] std::optional<std::span<const uint8_t>> value(const DicomElement& element);
    /// Byte order of the element that was read last.
    [[nodiscard]] ByteOrder byteOrder() const { return order_; }
    /// Byte order of the meta-header, where there is one.
    [[nodiscard]] std::optional<ByteOrder> metaByteOrder() const { return metaOrder_; }

private:
    void readTag(DicomElement& element);
    bool readLength(DicomElement& element);
    void skipUndefinedLength();

    ByteReader reader_;
    DicomEncoding encoding_;
    ByteOrder order_;
    bool metaExplicit_;
    std::optional<ByteOrder> metaOrder_;
    std::optional<DicomElement> tagRead_; ///< the first tag, read while looking for the meta-header
};

/// Value as text up to its first zero byte.
[[nodiscard]] std::string dicomText(std::span<const uint8_t> value);
