// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_slice_times.h"

#include "intake/dicom_walk.h"
#include "intake/header_numbers.h"

#include <algorithm>
#include <string>

namespace {

constexpr uint16_t privateGroup = 0x0019;
constexpr uint16_t timesInBlock = 0x29;

// The value of the element; empty where there is none.
std::span<const uint8_t> findTimes(std::span<const uint8_t> bytes, ByteOrder& order) {
    const auto encoding = detectEncoding(bytes, EncodingSearch::LastKeyNearStart);
    if (!encoding)
        return {};
    DicomWalk walk(bytes, *encoding);
    DicomElement element;
    int block = -1;
    bool more = walk.begin() == DicomWalk::Start::Ready;
    while (more && walk.next(element) && element.group <= privateGroup) {
        const auto value = walk.value(element);
        more = value.has_value();
        if (!more || element.group != privateGroup)
            continue;
        // Elements 10 to FF name the owners of the blocks 10xx to FFxx.
        if (element.number >= 0x10 && element.number <= 0xFF &&
            dicomText(*value).starts_with("SIEMENS MR HEADER"))
            block = element.number;
        if (block >= 0 && element.number == ((block << 8) | timesInBlock)) {
            order = walk.byteOrder();
            return *value;
        }
    }
    return {};
}

} // namespace

std::vector<float> siemensSliceTimes(std::span<const uint8_t> bytes, int nrOfSlices) {
    ByteOrder order = hostByteOrder;
    const std::span<const uint8_t> value = findTimes(bytes, order);
    if (nrOfSlices <= 0 || value.size() != size_t(nrOfSlices) * sizeof(double))
        return {};
    ByteReader reader(value, order);
    std::vector<float> times(static_cast<size_t>(nrOfSlices));
    std::ranges::generate(times, [&reader] { return limitedFloat(reader.f64()); });
    constexpr float longestTR = 100000.0f;
    const bool usable =
        std::ranges::all_of(times, [](float time) { return time >= 0.0f && time < longestTR; });
    return usable ? times : std::vector<float>();
}
