// The volumes of a run in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <cstdint>
#include <span>
#include <vector>

class EventPump;

/// Samples of one volume: x fastest, then y, then slices.
using Volume = ZeroedBuffer<int16_t>;

/// Volumes of one size, each in memory of its own, and the table of their addresses. A volume keeps
/// its address from allocate() to clear().
class RunVolumes {
public:
    /// Replaces the volumes by `count` zeroed ones of `samples` each. False, with none allocated,
    /// when memory runs out. Since gigabytes take seconds, a pump processes events after each.
    [[nodiscard]] bool allocate(size_t count, size_t samples, EventPump* pump = nullptr);
    void clear();

    [[nodiscard]] size_t size() const { return table_.size(); }
    [[nodiscard]] bool empty() const { return table_.empty(); }
    /// Samples of each volume; 0 without volumes.
    [[nodiscard]] size_t samplesOfEach() const {
        return buffers_.empty() ? 0 : buffers_.front().size();
    }
    /// Samples of a volume, which must exist.
    [[nodiscard]] std::span<int16_t> operator[](size_t volume) { return buffers_[volume].span(); }
    [[nodiscard]] std::span<const int16_t> operator[](size_t volume) const {
        return buffers_[volume].span();
    }
    /// size() pointers, one for each volume, for plug-ins.
    [[nodiscard]] int16_t** table() { return table_.data(); }

private:
    std::vector<Volume> buffers_;
    std::vector<int16_t*> table_;
};
