// DICOM files built by hand, element by element.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <QByteArray>
#include <QFile>
#include <gtest/gtest.h>

inline std::span<const uint8_t> bytesOf(const QByteArray& bytes) {
    return {reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size())};
}

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

class DicomBytes {
public:
    explicit DicomBytes(ByteOrder order = ByteOrder::Little, bool explicitVR = true)
        : order_(order), explicitVR_(explicitVR) {}

    /// Preamble, mark and a meta-header with the transfer syntax.
    DicomBytes& meta(const QByteArray& syntax = "1.2.840.10008.1.2.1") {
        bytes += QByteArray(128, '\0') + "DICM";
        const ByteOrder dataOrder = std::exchange(order_, ByteOrder::Little);
        const bool dataExplicit = std::exchange(explicitVR_, true);
        element(0x0002, 0x0000, "UL", QByteArray::fromHex("1c000000"));
        element(0x0002, 0x0010, "UI", syntax + QByteArray(syntax.size() % 2, '\0'));
        order_ = dataOrder;
        explicitVR_ = dataExplicit;
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
    DicomBytes& pixels(const std::vector<uint16_t>& samples) {
        header(0x7FE0, 0x0010, "OW", uint32_t(2 * samples.size()));
        for (const uint16_t sample : samples)
            put(sample, 2);
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
