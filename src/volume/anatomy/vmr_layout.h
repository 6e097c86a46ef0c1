// The bytes of a .vmr file before and behind its voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/vmr_volume.h"

#include <cstdint>
#include <span>
#include <vector>

/// Bytes that hold the longest start of a file.
inline constexpr size_t longestVMRStart = 10;
/// What stands behind the voxels is read up to this number of bytes; a longer one is damaged.
inline constexpr size_t longestVMREnd = size_t(1) << 20;

enum class VMRParseResult { Good, TooRecent, Damaged };

struct VMRStart {
    VMRParseResult result = VMRParseResult::Damaged;
    size_t length = 0; ///< bytes before the voxels
};

/// Form, version and sizes from the first bytes of a file. `header` is defined only after Good.
[[nodiscard]] VMRStart parseVMRStart(std::span<const uint8_t> bytes, VMRHeader& header);
/// Place and spaces from the bytes behind the voxels, which the prefix form doesn't have. False,
/// with these at their defaults, when a part is cut off or a count is beyond what is left.
[[nodiscard]] bool parseVMREnd(std::span<const uint8_t> bytes, VMRHeader& header);
/// The bytes before the voxels.
[[nodiscard]] std::vector<uint8_t> vmrStartBytes(const VMRHeader& header);

/// Of one block; fits 64 bits for any sizes of a header.
[[nodiscard]] constexpr uint64_t voxelsOfBlock(const VMRHeader& header) {
    return uint64_t(header.DimX) * uint64_t(header.DimY) * uint64_t(header.DimZ);
}
/// Whether this value, at the start of a file, is a version instead of DimX.
[[nodiscard]] constexpr bool readsAsVersion(int firstValue) {
    return firstValue >= 2 && firstValue <= 10;
}
