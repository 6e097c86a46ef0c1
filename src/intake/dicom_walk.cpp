// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_walk.h"

#include "intake/pixel_key.h"

#include <algorithm>
#include <string>

namespace {

constexpr size_t markOffset = 128;
constexpr uint32_t undefinedLength = 0xFFFFFFFF;
// Longest value that a header may hold; a longer one shows that this is not a header.
constexpr uint32_t longestValue = 1050000;
// Bytes that are tested for the pixel key before the search for the encoding ends.
constexpr size_t encodingSearchLimit = 200000;

bool hasText(std::span<const uint8_t> bytes, const char* two) {
    return bytes.size() == 2 && bytes[0] == uint8_t(two[0]) && bytes[1] == uint8_t(two[1]);
}

bool hasLongLength(std::span<const uint8_t> representation) {
    return std::ranges::any_of(std::array{"OB", "OW", "UN", "SQ"},
                               [&](const char* name) { return hasText(representation, name); });
}

uint16_t swapped(uint16_t value) {
    return uint16_t((value << 8) | (value >> 8));
}

uint32_t swapped(uint32_t value) {
    return (uint32_t(swapped(uint16_t(value))) << 16) | swapped(uint16_t(value >> 16));
}

} // namespace

std::optional<DicomEncoding> detectEncoding(std::span<const uint8_t> bytes, EncodingSearch search) {
    std::optional<DicomEncoding> found;
    size_t tested = 0;
    size_t position = 0;
    while (position + pixel_key::size <= bytes.size()) {
        if (search == EncodingSearch::LastKeyNearStart && tested > encodingSearchLimit)
            break;
        if (!pixel_key::isAt(bytes, position)) {
            position += 2;
            tested += 2;
            continue;
        }
        found = DicomEncoding{pixel_key::byteOrder(bytes, position),
                              pixel_key::isFollowedBy(bytes, position, "OW")};
        if (search == EncodingSearch::FirstKey)
            break;
        // The key and the two bytes after it are skipped and not counted.
        position += pixel_key::size + 2;
    }
    return found;
}

DicomWalk::Start DicomWalk::begin() {
    if (!reader_.seek(markOffset))
        return Start::TooShort;
    if (reader_.remaining() < 4 || std::string_view(dicomText(reader_.take(4))) != "DICM") {
        // A file of the older standard, which has neither preamble nor meta-header.
        return reader_.seek(0) ? Start::Ready : Start::TooShort;
    }
    const std::span<const uint8_t> group = reader_.take(2);
    if (group.size() == 2 && group[0] == 0x02 && group[1] == 0x00)
        order_ = ByteOrder::Little;
    else if (group.size() == 2 && group[0] == 0x00 && group[1] == 0x02)
        order_ = ByteOrder::Big;
    else
        return Start::NoMetaHeader;
    metaOrder_ = order_;
    reader_.setOrder(order_);
    tagRead_ = DicomElement{0x0002, reader_.u16(), 0};
    ByteReader ahead = reader_;
    metaExplicit_ = hasText(ahead.take(2), "UL");
    return Start::Ready;
}

bool DicomWalk::next(DicomElement& element) {
    readTag(element);
    const bool shortLength = readLength(element);
    // Only the meta-header may differ from the data set. The rest of this element's header was read
    // in the order of the meta-header, which is undone here.
    if (element.group != 0x0002 && order_ != encoding_.byteOrder) {
        element.group = swapped(element.group);
        element.number = swapped(element.number);
        element.length = shortLength ? swapped(uint16_t(element.length)) : swapped(element.length);
        order_ = encoding_.byteOrder;
    }
    if (element.length == undefinedLength) {
        skipUndefinedLength();
        element.length = 0;
    }
    return !reader_.failed() && reader_.remaining() > 0 && element.length <= longestValue;
}

void DicomWalk::readTag(DicomElement& element) {
    reader_.setOrder(order_);
    if (tagRead_) {
        element = *tagRead_;
        tagRead_.reset();
        return;
    }
    element.group = reader_.u16();
    element.number = reader_.u16();
}

// True for a length of two bytes.
bool DicomWalk::readLength(DicomElement& element) {
    if (encoding_.explicitVR || (metaExplicit_ && element.group == 0x0002)) {
        if (!hasLongLength(reader_.take(2))) {
            element.length = reader_.u16();
            return true;
        }
        reader_.skip(2);
    }
    element.length = reader_.u32();
    return false;
}

// Looks for the first sequence delimiter, of any level.
void DicomWalk::skipUndefinedLength() {
    reader_.setOrder(order_);
    uint16_t before = 0;
    while (!reader_.failed()) {
        const uint16_t word = reader_.u16();
        if (before == 0xFFFE && word == 0xE0DD)
            break;
        before = word;
    }
    reader_.skip(4);
}

std::optional<std::span<const uint8_t>> DicomWalk::value(const DicomElement& element) {
    const std::span<const uint8_t> bytes = reader_.take(element.length);
    if (reader_.failed())
        return std::nullopt;
    return bytes;
}

std::string dicomText(std::span<const uint8_t> value) {
    return std::string(value.begin(), std::ranges::find(value, uint8_t(0)));
}
