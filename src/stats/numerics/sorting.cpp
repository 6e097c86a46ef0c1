// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/sorting.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace numerics {

std::vector<int> indexx(std::span<const float> keys) {
    std::vector<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&keys](int left, int right) {
        const float a = keys[size_t(left)];
        const float b = keys[size_t(right)];
        return std::isnan(a) || std::isnan(b) ? std::isnan(b) && !std::isnan(a) : a < b;
    });
    return order;
}

void sort2(std::span<float> keys, std::span<float> companions) {
    const size_t count = std::min(keys.size(), companions.size());
    const std::vector<float> oldKeys(keys.begin(), keys.begin() + ptrdiff_t(count));
    const std::vector<float> oldCompanions(companions.begin(),
                                           companions.begin() + ptrdiff_t(count));
    const std::vector<int> order = indexx(oldKeys);
    for (size_t i = 0; i < count; ++i) {
        keys[i] = oldKeys[size_t(order[i])];
        companions[i] = oldCompanions[size_t(order[i])];
    }
}

} // namespace numerics
