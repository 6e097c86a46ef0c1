// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/time_course_splines.h"

// First and second derivatives of neighbouring cubics agree at each sample, and the second ones c
// are 0 at both ends: with unit spacing each inner row of the system is
// c[v - 1] + 4 c[v] + c[v + 1] = 6 * change of slope.

TimeCourseSplines::TimeCourseSplines(size_t nrOfVolumes)
    : nrOfVolumes_(nrOfVolumes), diagonal_(nrOfVolumes, 1.0),
      curvatures_(nrOfVolumes * timeCourseBlock, 0.0f) {
    for (size_t v = 1; v + 1 < nrOfVolumes; ++v)
        diagonal_[v] = v == 1 ? 4.0 : 4.0 - 1.0 / diagonal_[v - 1];
}

/// `work` takes the right-hand sides, in its rows from 1 on.
void TimeCourseSplines::findCurvatures(const double* samples, double* work) {
    constexpr size_t stride = timeCourseBlock;
    for (size_t v = 1; v + 1 < nrOfVolumes_; ++v) {
        const double* const here = samples + v * stride;
        double* const right = work + v * stride;
        for (size_t i = 0; i < stride; ++i)
            right[i] = 6.0 * ((here[i + stride] - here[i]) - (here[i] - here[i - stride]));
        if (v == 1)
            continue;
        const double factor = 1.0 / diagonal_[v - 1];
        for (size_t i = 0; i < stride; ++i)
            right[i] -= factor * right[i - stride];
    }
    std::array<double, stride> after{};
    for (size_t v = nrOfVolumes_ < 3 ? 0 : nrOfVolumes_ - 2; v > 0; --v) {
        const double* const right = work + v * stride;
        float* const curvature = curvatures_.data() + v * stride;
        for (size_t i = 0; i < stride; ++i) {
            after[i] = (right[i] - after[i]) / diagonal_[v];
            curvature[i] = float(after[i]);
        }
    }
}

void TimeCourseSplines::shift(double delay, const double* samples, double* filtered) {
    constexpr size_t stride = timeCourseBlock;
    findCurvatures(samples, filtered);
    for (size_t v = 1; v < nrOfVolumes_; ++v) {
        const float at = float(double(v) - delay);
        const size_t left = std::min(size_t(at), nrOfVolumes_ - 2);
        const double a = double(left + 1) - double(at);
        const double b = 1.0 - a;
        const double* const y = samples + left * stride;
        const float* const curvature = curvatures_.data() + left * stride;
        double* const target = filtered + v * stride;
        for (size_t i = 0; i < stride; ++i)
            target[i] = double(float(a * y[i] + b * y[i + stride] +
                                     ((a * a * a - a) * double(curvature[i]) +
                                      (b * b * b - b) * double(curvature[i + stride])) /
                                         6.0));
    }
}
