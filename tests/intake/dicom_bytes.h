// DICOM files built by hand, element by element.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "support/files.h"

class DicomBytes {
public:
    explicit DicomBytes(ByteOrder order = ByteOrder::Little, bool explicitVR = true)
        : order_(order), explicitVR_(explicitVR) {}

    /// Preamble, mark and a meta-header: group length and transfer syntax, always little-endian.
    DicomBytes& meta() {
        bytes += QByteArray(128, '\0') + "DICM" +
                 QByteArray::fromHex("02000000554c04001c0000000200100055491400") +
                 QByteArray("1.2.840.10008.1.2.1", 20);
        return *this;
    }
    DicomBytes& element(uint16_t group, uint16_t number, const char* representation,
                        const QByteArray& value) {
        return header(group, number, representation, uint32_t(value.size())).raw(value);
    }
    DicomBytes& header(uint16_t group, uint16_t number, const char* representation,
                       uint32_t length) {
        put(group, 2);
        put(number, 2);
        // Items and delimiters have no representation, whatever the encoding.
        const bool explicitHeader = explicitVR_ && group != 0xFFFE;
        const bool longLength = QByteArray("OB OW UN SQ").contains(representation);
        if (explicitHeader)
            bytes += QByteArray(representation) + QByteArray(longLength ? 2 : 0, '\0');
        put(length, explicitHeader && !longLength ? 2 : 4);
        return *this;
    }
    DicomBytes& raw(const QByteArray& value) {
        bytes += value;
        return *this;
    }
    DicomBytes& word(uint16_t group, uint16_t number, uint16_t value) {
        header(group, number, "US", 2);
        put(value, 2);
        return *this;
    }
    DicomBytes& pixels(const std::vector<int>& samples) {
        header(0x7FE0, 0x0010, "OW", uint32_t(2 * samples.size()));
        for (const int sample : samples)
            put(uint32_t(sample), 2);
        return *this;
    }

    QByteArray bytes;

private:
    void put(uint32_t value, int size) {
        for (int i = 0; i < size; ++i)
            bytes += char(value >> (8 * (order_ == ByteOrder::Little ? i : size - 1 - i)));
    }

    ByteOrder order_;
    bool explicitVR_;
};
