// Random orders that are the same with every compiler and library.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <utility>

/// Puts the values into random order (R. A. Fisher and F. Yates; D. E. Knuth, The Art of Computer
/// Programming, vol. 2, algorithm P). Its draws are made here, since those of the standard library
/// may differ between its versions.
template<typename Value> void shuffle(std::span<Value> values, std::mt19937& generator) {
    for (size_t left = values.size(); left > 1; --left) {
        const auto drawn = size_t(uint64_t(generator()) * left >> 32);
        std::swap(values[left - 1], values[drawn]);
    }
}
