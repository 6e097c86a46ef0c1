// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/glm_blocks.h"

#include <bit>
#include <cmath>
#include <random>

namespace {

// Each kernel against its plain form, voxel by voxel, bit for bit.

constexpr size_t stride = 300; // of the state; blocks start at an odd index
constexpr size_t firstVoxel = 17;

struct Shape {
    size_t count;
    int p;
    int n;
};
const Shape shapes[] = {{1, 1, 3},  {3, 2, 12}, {7, 5, 20},    {8, 8, 31},   {17, 4, 9},
                        {31, 9, 4}, {64, 3, 2}, {255, 11, 40}, {256, 8, 77}, {33, 50, 60}};

class GLMKernels : public testing::TestWithParam<Shape> {
protected:
    size_t count = GetParam().count;
    int p = GetParam().p;
    int n = GetParam().n;
    std::mt19937 random{unsigned(count)};

    template<typename T> std::vector<T> numbers(size_t size, double spread) {
        std::normal_distribution<double> distribution(0.0, spread);
        std::vector<T> values(size);
        for (T& value : values)
            value = T(distribution(random));
        return values;
    }
};

template<typename T> void expectSameBits(std::span<const T> a, std::span<const T> b) {
    using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i)
        ASSERT_EQ(std::bit_cast<Bits>(a[i]), std::bit_cast<Bits>(b[i])) << i;
}

TEST_P(GLMKernels, RecursiveUpdate) {
    const auto samples = numbers<int16_t>(stride, 3000);
    const auto x = numbers<double>(size_t(p), 1);
    const auto gain = numbers<double>(size_t(p), 0.1);
    std::vector<double> values = numbers<double>(size_t(p + 1) * stride, 100);
    std::vector<double> plain = values;
    const RecursiveStep step{x, gain, 1.37};
    updateBetasAndResiduals(step, samples.data() + firstVoxel, values.data() + firstVoxel, stride,
                            count);
    for (size_t v = firstVoxel; v < firstVoxel + count; ++v) {
        double e = double(samples[v]);
        for (size_t j = 0; j < x.size(); ++j)
            e -= x[j] * plain[j * stride + v];
        for (size_t j = 0; j < x.size(); ++j)
            plain[j * stride + v] += e * gain[j];
        plain[x.size() * stride + v] += e * e / step.scale;
    }
    expectSameBits<double>(values, plain);
}

TEST_P(GLMKernels, TValues) {
    std::vector<double> values = numbers<double>(size_t(p + 1) * stride, 100);
    for (size_t v = 0; v < stride; ++v) // some flat, some negative by rounding
        values[size_t(p) * stride + v] *= v % 5 == 0 ? 1e-9 : 20;
    const auto weights = numbers<float>(size_t(p), 2);
    for (const float variance : {0.021f, -1e-6f, 0.0f}) {
        std::vector<float> betas(size_t(p) * glmBlockVoxels);
        std::vector<float> variances(count);
        std::vector<float> t(count);
        std::vector<float> plain(count);
        copyBetasAndVariances(values.data() + firstVoxel, stride, p, 37.0f, count, betas.data(),
                              variances.data());
        computeTValues({weights, variance}, betas.data(), glmBlockVoxels, variances.data(), count,
                       t.data());
        for (size_t v = 0; v < count; ++v) {
            const double* voxel = values.data() + firstVoxel + v;
            const float s2 = float(voxel[size_t(p) * stride]) / 37.0f;
            float effect = 0.0f;
            for (size_t j = 0; j < size_t(p); ++j)
                effect += weights[j] * float(voxel[j * stride]);
            plain[v] = s2 < 1e-05f || variance <= 0.0f ? 0.0f : effect / std::sqrt(s2 * variance);
        }
        expectSameBits<float>(t, plain);
    }
}

TEST_P(GLMKernels, BatchSolution) {
    const BatchDesign design{p, n, numbers<float>(size_t(p * n), 1),
                             numbers<float>(size_t(p * p), 0.3), p};
    std::vector<std::vector<int16_t>> volumes;
    std::vector<const int16_t*> samples;
    for (int t = 0; t < n; ++t)
        volumes.push_back(numbers<int16_t>(stride, 6000));
    for (const auto& volume : volumes)
        samples.push_back(volume.data() + firstVoxel);
    std::vector<double> values(size_t(p + 1) * stride, 0.0);
    std::vector<double> plain = values;
    BatchScratch scratch;
    EXPECT_TRUE(scratch.allocate(p, n));
    solveBlock(design, samples, count, scratch, values.data() + firstVoxel, stride);
    for (size_t v = firstVoxel; v < firstVoxel + count; ++v) {
        std::vector<float> xy(size_t(p), 0.0f);
        std::vector<float> b(size_t(p), 0.0f);
        for (size_t j = 0; j < xy.size(); ++j)
            for (size_t t = 0; t < size_t(n); ++t)
                xy[j] += design.x[t * size_t(p) + j] * float(volumes[t][v]);
        for (size_t i = 0; i < b.size(); ++i)
            for (size_t j = 0; j < b.size(); ++j)
                b[i] += design.inverse[i * size_t(p) + j] * xy[j];
        double s1 = 0;
        double s2 = 0;
        for (size_t t = 0; t < size_t(n); ++t) {
            double model = 0;
            for (size_t j = 0; j < b.size(); ++j)
                model += double(design.x[t * size_t(p) + j] * b[j]);
            const double e = double(float(volumes[t][v])) - model;
            s1 += e;
            s2 += e * e;
        }
        for (size_t j = 0; j < b.size(); ++j)
            plain[j * stride + v] = double(b[j]);
        plain[size_t(p) * stride + v] = s2 - s1 * s1 / n;
    }
    expectSameBits<double>(values, plain);
}

INSTANTIATE_TEST_SUITE_P(Shapes, GLMKernels, testing::ValuesIn(shapes));

} // namespace
