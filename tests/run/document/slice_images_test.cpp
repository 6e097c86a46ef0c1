// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/slice_images.h"

#include <gtest/gtest.h>
#include <numeric>

namespace {

TEST(GreyScale, SpansBlackToWhiteAndLimitsTheGain) {
    GreyScale scale;
    auto table = scale.table();
    EXPECT_EQ(table[0], 0xff000000u);
    EXPECT_EQ(table[100], 0xff777777u); // 100 * 255 / 215 = 118.6
    EXPECT_EQ(table[215], 0xffffffffu);
    scale.gain = {2.0f, 0.5f, -1.0f};
    table = scale.table();
    EXPECT_EQ(table[100], 0xffed3b00u); // 237.2, 59.3, below 0
    EXPECT_EQ(table[215], 0xffff8000u); // beyond white, 127.5
}

struct GreyCase {
    int low, high, sample, gradation;
};

TEST(SliceImages, PaintSamplesByTheDisplayWindow) {
    // Gradation clamp((v - low) / (high - low) * 215, 0, 215), cut to whole numbers.
    const std::vector<GreyCase> cases{
        {100, 1100, 99, 0},     {100, 1100, 600, 107},   {100, 1100, 1100, 215},
        {100, 1100, 5000, 215}, {0, 65535, 0x8000, 107}, {500, 500, 500, 0},
        {500, 500, 501, 215},   {500, 400, 500, 0},      {0, 1 << 30, 65535, 214},
    };
    for (const GreyCase& test : cases) {
        SliceImages slices;
        slices.greyScale.low = test.low;
        slices.greyScale.high = test.high;
        const std::array<int16_t, 1> sample{int16_t(uint16_t(test.sample))};
        slices.createSlicePixmaps(sample, 1, 1, 1);
        ASSERT_EQ(slices.SlicePixmaps.size(), 1u);
        EXPECT_EQ(slices.SlicePixmaps[0].pixel(0, 0),
                  slices.greyScale.table()[size_t(test.gradation)])
            << test.low << " to " << test.high << ", sample " << test.sample;
    }
}

TEST(SliceImages, KeepTheOrderOfTheSamplesAndRefuseWhatDoesNotFit) {
    std::vector<int16_t> samples(2 * 3 * 4);
    std::iota(samples.begin(), samples.end(), int16_t(0));
    SliceImages slices;
    slices.greyScale.low = 0;
    slices.greyScale.high = 215;
    const auto table = slices.greyScale.table();
    slices.createSlicePixmaps(samples, 2, 3, 4);
    ASSERT_EQ(slices.SlicePixmaps.size(), 4u);
    EXPECT_EQ(slices.SlicePixmaps[3].pixel(1, 2), table[23]);
    EXPECT_EQ(slices.SlicePixmaps[1].pixel(0, 1), table[8]);

    std::reverse(samples.begin(), samples.end());
    slices.updateSlicePixmaps(samples, 4);
    EXPECT_EQ(slices.SlicePixmaps[3].pixel(1, 2), table[0]);
    slices.updateSlicePixmaps(std::span(samples).first(20), 4);
    EXPECT_EQ(slices.SlicePixmaps[0].pixel(0, 0), table[23]);

    slices.createSlicePixmaps(samples, 2, 3, 5);
    EXPECT_TRUE(slices.SlicePixmaps.empty());
    slices.createSlicePixmaps(samples, -2, -3, 4);
    EXPECT_TRUE(slices.SlicePixmaps.empty());
}

TEST(SliceImages, InplanesHaveADisplayWindowOfTheirOwn) {
    SliceImages slices;
    std::vector<int16_t> samples(2 * 3 * 4, int16_t(7));
    samples.back() = int16_t(-2); // 65534
    slices.createInplanePixmaps(samples, 3, 4, 2);
    ASSERT_EQ(slices.InplanePixmaps.size(), 2u);
    EXPECT_EQ(slices.InplanePixmaps[1].pixel(2, 3), 0xffffffffu);
    EXPECT_EQ(slices.InplanePixmaps[1].pixel(1, 3), 0xff000000u);
    EXPECT_EQ(slices.greyScale.high, GreyScale().high);
    slices.createInplanePixmaps(samples, 3, 5, 2);
    EXPECT_TRUE(slices.InplanePixmaps.empty());
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

} // namespace
