// SPDX-License-Identifier: GPL-3.0-or-later
#include "dicom_elements.h"

#include "raw_bytes.h"

#include <cstring>

namespace {

bool hasLongLength(const char* representation) {
    return std::strcmp(representation, "OB") == 0 || std::strcmp(representation, "OW") == 0;
}

QByteArray transferSyntaxUid(TransferSyntax syntax) {
    switch (syntax) {
    case TransferSyntax::ImplicitLittle:
        return "1.2.840.10008.1.2";
    case TransferSyntax::ExplicitBig:
        return "1.2.840.10008.1.2.2";
    case TransferSyntax::ExplicitLittle:
        break;
    }
    return "1.2.840.10008.1.2.1";
}

} // namespace

ByteOrder DicomElements::order() const {
    return syntax_ == TransferSyntax::ExplicitBig ? ByteOrder::Big : ByteOrder::Little;
}

void DicomElements::number(uint32_t value, int size) {
    appendNumber(encoded_, value, size, order());
}

void DicomElements::header(uint16_t group, uint16_t element, const char* representation,
                           qsizetype length) {
    number(group, 2);
    number(element, 2);
    if (syntax_ == TransferSyntax::ImplicitLittle) {
        number(uint32_t(length), 4);
        return;
    }
    encoded_.append(representation, 2);
    if (hasLongLength(representation)) {
        number(0, 2);
        number(uint32_t(length), 4);
    } else {
        number(uint32_t(length), 2);
    }
}

void DicomElements::text(uint16_t group, uint16_t element, const char* representation,
                         QByteArray value) {
    if (value.size() % 2 != 0)
        value.append(std::strcmp(representation, "UI") == 0 ? '\0' : ' ');
    header(group, element, representation, value.size());
    encoded_.append(value);
}

void DicomElements::unsignedShort(uint16_t group, uint16_t element, uint16_t value) {
    header(group, element, "US", 2);
    number(value, 2);
}

void DicomElements::unsignedLong(uint16_t group, uint16_t element, uint32_t value) {
    header(group, element, "UL", 4);
    number(value, 4);
}

void DicomElements::bytes(uint16_t group, uint16_t element, QByteArray value) {
    if (value.size() % 2 != 0)
        value.append('\0');
    header(group, element, "OB", value.size());
    encoded_.append(value);
}

void DicomElements::samples(uint16_t group, uint16_t element, std::span<const uint16_t> values) {
    header(group, element, "OW", qsizetype(values.size()) * 2);
    encoded_.append(sampleBytes(values, order()));
}

QByteArray dicomFile(TransferSyntax syntax, const QByteArray& instanceUid,
                     const QByteArray& dataSet) {
    DicomElements meta(TransferSyntax::ExplicitLittle);
    meta.bytes(0x0002, 0x0001, QByteArray("\0\1", 2));
    meta.text(0x0002, 0x0002, "UI", "1.2.840.10008.5.1.4.1.1.4");
    meta.text(0x0002, 0x0003, "UI", instanceUid);
    meta.text(0x0002, 0x0010, "UI", transferSyntaxUid(syntax));
    meta.text(0x0002, 0x0012, "UI", "2.25.71836202918340951");
    meta.text(0x0002, 0x0013, "SH", "VELO_SIMULATOR");
    DicomElements length(TransferSyntax::ExplicitLittle);
    length.unsignedLong(0x0002, 0x0000, uint32_t(meta.encoded().size()));
    return QByteArray(128, '\0') + "DICM" + length.encoded() + meta.encoded() + dataSet;
}
