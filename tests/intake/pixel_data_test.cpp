// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/pixel_data.h"

#include <QByteArray>
#include <gtest/gtest.h>
#include <random>

namespace {

// The plain form: every even offset in turn.
std::vector<size_t> allKeys(std::span<const uint8_t> bytes) {
    std::vector<size_t> keys;
    for (size_t i = 0; i + 4 <= bytes.size(); i += 2) {
        const int group = bytes[i] << 8 | bytes[i + 1];
        const int number = bytes[i + 2] << 8 | bytes[i + 3];
        if ((group == 0xE07F || group == 0x7FE0) && (number == 0x1000 || number == 0x0010))
            keys.push_back(i);
    }
    return keys;
}

TEST(FindPixelData, AgreesWithThePlainSearch) {
    std::mt19937 random(1);
    const QByteArray words = QByteArray::fromHex("e07f7fe0100000105555");
    int nrOfHits = 0;
    for (int round = 0; round < 400; ++round) {
        // Dense in halves of keys, or with few of them across the blocks of the fast search.
        const bool dense = round < 200;
        std::vector<uint8_t> bytes;
        for (size_t i = random() % (dense ? 12 : 5000); i > 0; --i) {
            const qsizetype word = dense || random() % 16 == 0 ? random() % 5 : 4;
            bytes.insert(bytes.end(), {uint8_t(words[2 * word]), uint8_t(words[2 * word + 1])});
        }
        if (!bytes.empty() && random() % 2 == 0)
            bytes.pop_back();
        const std::vector<size_t> keys = allKeys(bytes);
        nrOfHits += !keys.empty();
        const auto first = findPixelData(bytes, PixelKeySearch::First);
        const auto last = findPixelData(bytes, PixelKeySearch::Last);
        ASSERT_EQ(first.has_value(), !keys.empty());
        ASSERT_EQ(last.has_value(), !keys.empty());
        if (keys.empty())
            continue;
        EXPECT_EQ(first->valueOffset, keys.front() + 8);
        EXPECT_EQ(last->valueOffset, keys.back() + 8);
        EXPECT_EQ(pixelBytes(bytes, *last).empty(), keys.back() + 8 >= bytes.size());
        EXPECT_EQ(last->byteOrder,
                  bytes[keys.back() + 2] == 0x10 ? ByteOrder::Little : ByteOrder::Big);
    }
    EXPECT_GT(nrOfHits, 100);
}

} // namespace
