// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/data_stream.h"

#include <QDataStream>
#include <QtEndian>
#include <algorithm>
#include <vector>

namespace {

constexpr size_t floatsAtOnce = 16384;

} // namespace

void makeLittleEndian(QDataStream& stream) {
    stream.setVersion(11);
    stream.setByteOrder(QDataStream::LittleEndian);
}

void writeFloats(QDataStream& stream, std::span<const float> values) {
    std::vector<char> bytes(std::min(values.size(), floatsAtOnce) * sizeof(float));
    while (!values.empty() && stream.status() == QDataStream::Ok) {
        const std::span<const float> piece = values.first(std::min(values.size(), floatsAtOnce));
        qToLittleEndian<float>(piece.data(), qsizetype(piece.size()), bytes.data());
        stream.writeRawData(bytes.data(), int(piece.size_bytes()));
        values = values.subspan(piece.size());
    }
}

bool readFloats(QDataStream& stream, std::span<float> values) {
    std::vector<char> bytes(std::min(values.size(), floatsAtOnce) * sizeof(float));
    while (!values.empty()) {
        const std::span<float> piece = values.first(std::min(values.size(), floatsAtOnce));
        const int size = int(piece.size_bytes());
        if (stream.readRawData(bytes.data(), size) != size)
            return false;
        qFromLittleEndian<float>(bytes.data(), qsizetype(piece.size()), piece.data());
        values = values.subspan(piece.size());
    }
    return true;
}
