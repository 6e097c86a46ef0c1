// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/image_transformation.h"

#include <algorithm>

void reverseParts(std::span<int16_t> samples, int count) {
    if (count <= 0 || samples.size() % size_t(count) != 0)
        return;
    const size_t size = samples.size() / size_t(count);
    for (size_t low = 0, high = samples.size(); low + size < high; low += size) {
        high -= size;
        std::swap_ranges(samples.begin() + ptrdiff_t(low), samples.begin() + ptrdiff_t(low + size),
                         samples.begin() + ptrdiff_t(high));
    }
}

void transformSlice(std::span<int16_t> slice, int nrOfRows, int transformation) {
    if (transformation == 1)
        std::reverse(slice.begin(), slice.end());
    else if (transformation == 2)
        reverseParts(slice, nrOfRows);
}
