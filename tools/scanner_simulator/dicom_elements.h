// Writes DICOM data sets element by element in each of the three uncompressed encodings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "simulation_options.h"

#include <QByteArray>
#include <cstdint>
#include <span>

/// The encoding of DICOM PS3.5, sections 7.1 and 10. Elements must be added in ascending order of
/// tags.
class DicomElements {
public:
    explicit DicomElements(TransferSyntax syntax) : syntax_(syntax) {}

    /// A text value, padded to even length with a blank, or with a zero byte for "UI".
    void text(uint16_t group, uint16_t element, const char* representation, QByteArray value);
    void unsignedShort(uint16_t group, uint16_t element, uint16_t value);
    void unsignedLong(uint16_t group, uint16_t element, uint32_t value);
    /// "OB": bytes, the same in all encodings.
    void bytes(uint16_t group, uint16_t element, QByteArray value);
    /// "OW": samples in the byte order of the encoding.
    void samples(uint16_t group, uint16_t element, std::span<const uint16_t> values);
    [[nodiscard]] const QByteArray& encoded() const { return encoded_; }

private:
    void header(uint16_t group, uint16_t element, const char* representation, qsizetype length);
    void number(uint32_t value, int size);
    [[nodiscard]] ByteOrder order() const;

    TransferSyntax syntax_;
    QByteArray encoded_;
};

/// A complete file: preamble, meta header with this instance identifier, data set.
[[nodiscard]] QByteArray dicomFile(TransferSyntax syntax, const QByteArray& instanceUid,
                                   const QByteArray& dataSet);
