// Random numbers that depend only on the seed, not on the system's library.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

/// Generator with one word of state, mixed at each step (Steele, Lea and Flood, OOPSLA 2014). The
/// library's distributions may differ between systems, so they are not used.
class RandomNumbers {
public:
    explicit RandomNumbers(uint64_t seed) : state_(seed) {}

    uint64_t bits() {
        state_ += 0x9E3779B97F4A7C15u;
        uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        return mixed ^ (mixed >> 31);
    }
    /// Above 0, at most 1.
    double uniform() { return double((bits() >> 11) + 1) * 0x1p-53; }
    /// Mean 0, standard deviation 1; two at a time by the transform of Box and Muller (1958).
    float gaussian() {
        if (hasSpare_) {
            hasSpare_ = false;
            return spare_;
        }
        const float radius = std::sqrt(-2.0f * std::log(float(uniform())));
        const float angle = 2.0f * std::numbers::pi_v<float> * float(uniform());
        spare_ = radius * std::sin(angle);
        hasSpare_ = true;
        return radius * std::cos(angle);
    }

private:
    uint64_t state_;
    float spare_ = 0.0f;
    bool hasSpare_ = false;
};
