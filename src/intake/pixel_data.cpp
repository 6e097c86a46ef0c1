// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/pixel_data.h"

#include "intake/pixel_key.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

// Number of even offsets at which a key has room.
size_t nrOfPlaces(std::span<const uint8_t> bytes) {
    return bytes.size() < pixel_key::size ? 0 : (bytes.size() - pixel_key::size) / 2 + 1;
}

std::optional<size_t> firstKey(std::span<const uint8_t> bytes) {
    const size_t places = nrOfPlaces(bytes);
    for (size_t place = 0; place < places; ++place)
        if (pixel_key::isAt(bytes, 2 * place))
            return 2 * place;
    return std::nullopt;
}

constexpr size_t blockWords = 1024;

// Whether any of the words is the key's group: a loop without a branch, which the compiler turns
// into vector instructions.
bool holdsGroup(std::span<const uint8_t> block) {
    std::array<uint16_t, blockWords> words;
    std::memcpy(words.data(), block.data(), block.size());
    int found = 0;
    for (size_t i = 0; i < block.size() / 2; ++i)
        found |= int(words[i] == 0x7FE0) | int(words[i] == 0xE07F);
    return found != 0;
}

// The samples follow the key and fill nearly the whole file, so the search goes through them from
// the end. No two keys overlap: the last one is the same from either side.
std::optional<size_t> lastKey(std::span<const uint8_t> bytes) {
    size_t end = nrOfPlaces(bytes);
    while (end > 0) {
        const size_t start = end - std::min(end, blockWords);
        if (holdsGroup(bytes.subspan(2 * start, 2 * (end - start))))
            for (size_t place = end; place-- > start;)
                if (pixel_key::isAt(bytes, 2 * place))
                    return 2 * place;
        end = start;
    }
    return std::nullopt;
}

} // namespace

std::optional<PixelData> findPixelData(std::span<const uint8_t> bytes, PixelKeySearch search) {
    const std::optional<size_t> key =
        search == PixelKeySearch::First ? firstKey(bytes) : lastKey(bytes);
    if (!key)
        return std::nullopt;
    const bool words = pixel_key::isFollowedBy(bytes, *key, "OW");
    const bool longHeader = words || pixel_key::isFollowedBy(bytes, *key, "OB");
    PixelData found{*key + (words ? 12 : 8), pixel_key::byteOrder(bytes, *key), {}};
    ByteReader reader(bytes, found.byteOrder);
    static_cast<void>(reader.seek(*key + pixel_key::size) && reader.skip(longHeader ? 4 : 0));
    const uint32_t length = reader.u32();
    if (!reader.failed())
        found.statedLength = length;
    return found;
}

std::span<uint8_t> pixelBytes(std::span<uint8_t> bytes, const PixelData& pixelData) {
    return bytes.subspan(std::min(pixelData.valueOffset, bytes.size()));
}

void swapSamples(std::span<uint8_t> samples) {
    for (size_t i = 1; i < samples.size(); i += 2)
        std::swap(samples[i - 1], samples[i]);
}

void toHostOrder(std::span<uint8_t> samples, ByteOrder order) {
    if (order != hostByteOrder)
        swapSamples(samples);
}
