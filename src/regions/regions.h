// The regions of a run, in order of their creation.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"

#include <memory>
#include <vector>

/// Part of a document. A region keeps its address until it is removed.
class Regions {
public:
    [[nodiscard]] int count() const { return int(regions_.size()); }
    [[nodiscard]] bool empty() const { return regions_.empty(); }
    /// The region must exist.
    [[nodiscard]] RegionOfInterest& operator[](int index) { return *regions_[size_t(index)]; }
    [[nodiscard]] const RegionOfInterest& operator[](int index) const {
        return *regions_[size_t(index)];
    }
    RegionOfInterest& add(RegionOfInterest region);
    void clear() { regions_.clear(); }

private:
    std::vector<std::unique_ptr<RegionOfInterest>> regions_;
};
