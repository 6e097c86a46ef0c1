// Resampling, evaluation and fit against their plain forms and against scripted evaluations.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_evaluation.h"

#include "volume/head_volume.h"
#include "volume/plain_motion.h"

#include <gtest/gtest.h>

namespace {

std::vector<float> asList(const RigidTransformation& t) {
    return {t.tx, t.ty, t.tz, t.rx, t.ry, t.rz};
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    int whole(int low, int high) { return low + int(engine_() % unsigned(high - low + 1)); }
    float real(float range) { return range * (float(engine_()) / 2147483648.0f - 1.0f); }
    RigidTransformation motion(float range) {
        return {real(range), real(range), real(range), real(range), real(range), real(range)};
    }

private:
    std::mt19937 engine_;
};

std::vector<int16_t> resampled(const VolumeGrid& grid, const std::vector<int16_t>& source,
                               const RigidTransformation& t) {
    std::vector<int16_t> result(source.size(), 77);
    resampleVolume(grid, source, result, t);
    return result;
}

} // namespace

TEST(MotionFit, GivesTheBitsOfThePlainFormForManyVolumes) {
    int failures = 0, moved = 0, longest = 0;
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const VolumeGrid grid =
            gridOf({random.whole(3, 36), random.whole(3, 36), random.whole(1, 33)},
                   {2.0f + random.real(1.0f), 2.0f + random.real(1.0f), 3.0f + random.real(1.0f)});
        const HeadVolume head(grid, seed);
        std::vector<int16_t> target(grid.samples()), source(grid.samples());
        const double noise = random.whole(0, 3) * 15.0;
        head.fill({}, noise, seed, target);
        head.fill(random.motion(seed % 5 == 0 ? 20.0f : 1.5f), noise, seed + 1000, source);
        if (seed % 7 == 0) // samples beyond 32767 count as negative
            std::fill(source.begin(), source.begin() + ptrdiff_t(source.size() / 3), -20000);
        if (seed % 11 == 0)
            std::fill(target.begin(), target.end(), int16_t(seed));
        MotionParameters start{};
        for (double& value : start)
            value = seed % 2 == 0 ? double(random.real(1.0f)) : 0.0;

        using std::placeholders::_1, std::placeholders::_2;
        PlainMotion plain(grid, target, source);
        bool plainFailed = false, failed = false;
        const MotionFit expected =
            fitMotion(std::bind(&PlainMotion::evaluate, &plain, _1, _2), start, plainFailed);
        MotionEvaluator evaluator;
        ASSERT_TRUE(evaluator.setTarget(grid, target));
        const MotionFit found = fitMotion(std::bind(&MotionEvaluator::evaluate, &evaluator, source,
                                                    _1, _2, std::ref(callersThread())),
                                          start, failed);
        EXPECT_EQ(asList(found.transformation), asList(expected.transformation));
        EXPECT_EQ(found.steps, expected.steps);
        EXPECT_EQ(failed, plainFailed);
        EXPECT_EQ(resampled(grid, source, found.transformation),
                  plain.resample(found.transformation));
        failures += failed;
        moved += found.transformation.tx != 0.0f;
        longest = std::max(longest, found.steps);
    }
    EXPECT_GT(failures, 3); // the cases are of all kinds
    EXPECT_GT(moved, 35);
    EXPECT_EQ(longest, 11);
}

TEST(ResampleVolume, GivesTheBitsOfThePlainFormForAnyMotionAndSize) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        // Some rows are longer than the blocks in which they are sampled.
        const int columns = seed % 9 == 0 ? random.whole(257, 300) : random.whole(1, 20);
        const VolumeGrid grid = gridOf({columns, random.whole(1, 12), random.whole(1, 9)},
                                       {2.0f + random.real(1.5f), 2.0f + random.real(1.5f), 3.0f});
        std::vector<int16_t> source(grid.samples());
        for (int16_t& sample : source)
            sample = int16_t(random.whole(-32768, 32767));
        const std::array<float, 4> ranges{1.0f, 5.0f, 180.0f, 1e9f};
        const RigidTransformation motion = random.motion(ranges[seed % 4]);
        EXPECT_EQ(resampled(grid, source, motion), PlainMotion(grid, {}, source).resample(motion));
    }
}

TEST(ResampleVolume, MovesTurnsAndRoundsAsStated) {
    const VolumeGrid grid = gridOf({4, 3, 3}, {2.0f, 2.0f, 2.0f});
    std::vector<int16_t> source(36);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = int16_t(5 + i % 4 * 3 + i / 12 * 100); // columns 3 apart, slices 100
    EXPECT_EQ(resampled(grid, source, {}), source);
    const auto rowOf = [&](const RigidTransformation& t, size_t slice) {
        const std::vector<int16_t> result = resampled(grid, source, t);
        return std::vector<int16_t>(result.begin() + ptrdiff_t(slice) * 12 + 4,
                                    result.begin() + ptrdiff_t(slice) * 12 + 8);
    };
    using Row = std::vector<int16_t>;
    // A positive translation shows what lies before; -0.5 is cut to 0, outside comes the nearest.
    EXPECT_EQ(rowOf({1.0f}, 0), (Row{5, 7, 10, 13}));
    EXPECT_EQ(rowOf({4.0f}, 0), (Row{0, 5, 5, 8}));
    EXPECT_EQ(rowOf({-3.0f}, 0), (Row{10, 13, 0, 0}));
    EXPECT_EQ(rowOf({0, 0, 2.0f}, 2), (Row{105, 108, 111, 114}));
    for (int16_t& sample : source)
        sample = int16_t(sample + 32760); // some of them above the largest signed one
    EXPECT_EQ(rowOf({1.0f}, 0), (Row{32765, 32767, int16_t(32770), int16_t(32773)}));
    // A quarter turn is exact: columns become rows.
    const VolumeGrid square = gridOf({3, 3, 2}, {1.3f, 1.3f, 1.7f});
    const std::vector<int16_t> slices{1,  2,  3,  4,  5,  6,  7,  8,  9,
                                      10, 20, 30, 40, 50, 60, 70, 80, 90};
    EXPECT_EQ(
        resampled(square, slices, {0, 0, 0, 0, 0, 90.0f}),
        (std::vector<int16_t>{3, 6, 9, 2, 5, 8, 1, 4, 7, 30, 60, 90, 20, 50, 80, 10, 40, 70}));
}

TEST(MotionFit, StepsAsLongAsTheErrorMoves) {
    const struct {
        std::vector<double>
            sums; ///< of squares, as the evaluations find them; the last is repeated
        int steps;
        std::vector<float> places; ///< at the start and after each step; not compared where empty
        float tx;                  ///< steps that were accepted, each less its damping
    } cases[] = {
        {{99, 98, 97, 96, 95, 94, 93, 92, 91, 90, 89, 88, 87}, 11, {}, 11.0f}, // always better
        // Damping shrinks a step from 1 to 1 / (1 + damping): 0.001, and ten times that when worse.
        {{100}, 3, {0.0f, float(1 / 1.001), float(1 / 1.01), float(1 / 1.1)}, 0.0f},
        {{100, 90, 80, 79.99995}, 3, {}, 3.0f},
        {{100, 90, 80, 79.9, 79.9}, 4, {}, 3.0f},
        {{100, 200, 90, 80, 80}, 4, {}, 2.0f},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.sums));
        std::vector<float> places;
        bool failed = false;
        const MotionFit fit = fitMotion(
            [&](const RigidTransformation& t, MotionEquations& equations) {
                equations = {};
                for (size_t i = 0; i < 6; ++i)
                    equations.curvature[i * 7] = 1.0;
                equations.gradient[0] = 1.0; // always asks for +1 along x
                equations.sumOfSquares = c.sums[std::min(places.size(), c.sums.size() - 1)];
                equations.voxelsUsed = 1;
                places.push_back(t.tx);
            },
            {}, failed);
        EXPECT_EQ(fit.steps, c.steps);
        EXPECT_EQ(int(places.size()), c.steps + 1);
        EXPECT_NEAR(fit.transformation.tx, c.tx, 0.02f);
        if (!c.places.empty()) {
            EXPECT_EQ(places, c.places);
        }
        EXPECT_FALSE(failed);
    }
}
