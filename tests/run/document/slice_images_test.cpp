// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/slice_images.h"

#include <gtest/gtest.h>
#include <numeric>

TEST(GreyScale, SpansBlackToWhiteAndLimitsTheGain) {
    GreyScale scale;
    EXPECT_EQ(scale.table()[100], 0xff777777u); // 100 * 255 / 215 = 118.6
    scale.gain = {2.0f, 0.5f, -1.0f};
    const auto table = scale.table();
    EXPECT_EQ(table[100], 0xffed3b00u); // 237.2, 59.3, below 0
    EXPECT_EQ(table[215], 0xffff8000u); // beyond white, 127.5
}

TEST(SliceImages, PaintSamplesByTheDisplayWindow) {
    // Gradation clamp((v - low) / (high - low) * 215, 0, 215), cut to whole numbers.
    const std::tuple<int, int, int, size_t> cases[] = {
        {100, 1100, 99, 0},      {100, 1100, 600, 107}, {100, 1100, 5000, 215},
        {0, 65535, 0x8000, 107}, {500, 500, 501, 215},  {500, 400, 500, 0},
        {0, 1 << 30, 65535, 214}};
    for (const auto& [low, high, sample, gradation] : cases) {
        SliceImages slices;
        slices.greyScale.low = low;
        slices.greyScale.high = high;
        slices.createSlicePixmaps(std::array{int16_t(uint16_t(sample))}, {1, 1, 1});
        ASSERT_EQ(slices.SlicePixmaps.size(), 1u);
        EXPECT_EQ(slices.SlicePixmaps[0].pixel(0, 0), slices.greyScale.table()[gradation])
            << low << " to " << high << ", sample " << sample;
    }
}

TEST(SliceImages, KeepTheOrderOfTheSamplesAndRefuseWhatDoesNotFit) {
    std::vector<int16_t> samples(2 * 3 * 4);
    std::iota(samples.begin(), samples.end(), int16_t(0));
    SliceImages slices;
    slices.greyScale.low = 0;
    slices.greyScale.high = 215;
    const auto table = slices.greyScale.table();
    slices.createSlicePixmaps(samples, {2, 3, 4});
    ASSERT_EQ(slices.SlicePixmaps.size(), 4u);
    EXPECT_EQ(slices.SlicePixmaps[3].pixel(1, 2), table[23]);

    std::reverse(samples.begin(), samples.end());
    slices.updateSlicePixmaps(samples);
    EXPECT_EQ(slices.SlicePixmaps[3].pixel(1, 2), table[0]);
    slices.updateSlicePixmaps(std::span(samples).first(20));
    EXPECT_EQ(slices.SlicePixmaps[0].pixel(0, 0), table[23]);

    slices.createSlicePixmaps(samples, {-2, -3, 4});
    EXPECT_TRUE(slices.SlicePixmaps.empty());
}

TEST(SliceImages, ThreadsShareThem) {
    std::vector<int16_t> samples(31 * 29 * 11);
    std::iota(samples.begin(), samples.end(), int16_t(0));
    SliceImages alone;
    alone.createSlicePixmaps(samples, {31, 29, 11});
    for (const int threads : {2, 3, 5}) {
        WorkerPool workers(threads);
        SliceImages shared;
        shared.createSlicePixmaps(std::vector<int16_t>(samples.size()), {31, 29, 11});
        shared.updateSlicePixmaps(samples, workers);
        EXPECT_TRUE(shared.SlicePixmaps == alone.SlicePixmaps) << threads << " threads";
    }
}

TEST(SliceImages, InplanesHaveADisplayWindowOfTheirOwn) {
    SliceImages slices;
    std::vector<int16_t> samples(2 * 3 * 4, int16_t(7));
    samples.back() = int16_t(-2); // 65534
    slices.createInplanePixmaps(samples, {3, 4, 2});
    ASSERT_EQ(slices.InplanePixmaps.size(), 2u);
    EXPECT_EQ(slices.InplanePixmaps[1].pixel(2, 3), 0xffffffffu);
    EXPECT_EQ(slices.InplanePixmaps[1].pixel(1, 3), 0xff000000u);
    EXPECT_EQ(slices.greyScale.high, GreyScale().high);
}

TEST(DisplayRange, LeavesOutBackgroundAndSingleBrightSamples) {
    std::vector<int16_t> samples(3000, 0); // background
    for (int value = 1; value <= 1000; ++value)
        samples.push_back(int16_t(value));
    GreyScale scale;
    computeDisplayRange(scale, samples);
    EXPECT_EQ(scale.low, 20);
    EXPECT_EQ(scale.high, 995);

    for (const size_t count : {size_t(0), samples.size()}) {
        computeDisplayRange(scale, std::vector<int16_t>(count));
        EXPECT_EQ(scale.low, 0);
        EXPECT_EQ(scale.high, 1);
    }
}
