// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/whole_run_glm.h"
#include "support/expected_table.h"
#include "support/recorded_progress.h"
#include "support/scripted_messages.h"
#include "volume/fmr_project.h"

#include <QTemporaryDir>
#include <cmath>

namespace {

// Samples, designs and expected models are in a table of make_whole_run_expected.py.

constexpr int lengths[] = {61, 45, 50};
constexpr size_t nrOfPatterns = 8;       ///< of voxels, in turn
constexpr VolumeSize size = {17, 16, 2}; ///< a slice is a full block and a part of one

template<typename Number = double> std::vector<Number> inTable(const std::string& name) {
    return expectedNumbers<Number>("stats/expected_whole_run.tsv", name.c_str());
}

FMRProject projectOf(int nrOfStudies) {
    FMRProject project;
    project.ResolutionX = size.x;
    project.ResolutionY = size.y;
    project.NrOfSlices = size.slices;
    project.NrOfVolumes = std::accumulate(lengths, lengths + nrOfStudies, 0);
    EXPECT_TRUE(project.allocateVolumes());
    for (size_t pattern = 0; pattern < nrOfPatterns; ++pattern) {
        const auto samples = inTable<int16_t>("samples " + std::to_string(pattern));
        for (size_t t = 0; t < project.volumes.size(); ++t)
            for (size_t v = pattern; v < size.samples(); v += nrOfPatterns)
                project.volumes[t][v] = samples[t];
    }
    return project;
}

WholeRunDesign designOf(int nrOfStudies, const std::string& layout) {
    WholeRunDesign design;
    for (int s = 0; s < nrOfStudies; ++s)
        design.studies.emplace_back().dataPoints = lengths[s];
    design.GLMDesign = inTable<float>("design " + layout);
    design.conditionOfColumn = inTable<int>("conditions " + layout);
    design.predictors.resize(design.conditionOfColumn.size());
    return design;
}

struct Case {
    const char* name;
    int nrOfStudies;
    const char* layout;
    ZTransformation transformation = ZTransformation::None;
    bool corrects = false;
    int missingDirections = 0;
};

class WholeRun : public testing::TestWithParam<Case> {
protected:
    static std::vector<double> expected(const std::string& name) {
        return inTable(GetParam().name + (": " + name));
    }
    static void expectNear(std::span<const float> found, const std::vector<double>& exact) {
        ASSERT_EQ(found.size(), exact.size());
        for (size_t i = 0; i < exact.size(); ++i)
            EXPECT_NEAR(double(found[i]), exact[i], 2e-7 * std::abs(exact[i]) + 2e-9) << i;
    }
};

TEST_P(WholeRun, IsThatOfLeastSquaresInDouble) {
    const Case& each = GetParam();
    const FMRProject project = projectOf(each.nrOfStudies);
    WholeRunDesign design = designOf(each.nrOfStudies, each.layout);
    design.transformation = each.transformation;
    design.CorrectSerialCorrelations = each.corrects;
    RunInMemory samples(project);
    RecordedProgress progress;
    WholeRunModel model;
    ASSERT_EQ(fitWholeRunModel(model, design, size, samples, progress), WholeRunFit::Done);
    EXPECT_TRUE(model.isValid());
    EXPECT_EQ(model.GLMType, 2);
    EXPECT_EQ(progress.values, (std::vector<int>{50, 100}));
    for (size_t pattern = 0; pattern < nrOfPatterns; ++pattern) {
        const std::vector<double> exact = expected("voxel " + std::to_string(pattern));
        for (size_t v = pattern; v < size.samples(); v += nrOfPatterns) {
            SCOPED_TRACE(v);
            std::vector<float> found;
            for (int row = 0; row < model.nrOfMapRows(); ++row)
                found.push_back(model.row(row)[v]);
            expectNear(found, exact);
        }
    }
    expectNear(model.GLMInverse, expected("inverse"));
    EXPECT_EQ(model.rank, model.GLMPredictors() - each.missingDirections);
    if (!each.corrects) {
        EXPECT_EQ(model.MeanAR1Before, -2.0f);
        EXPECT_EQ(model.MeanAR1After, -2.0f);
        return;
    }
    expectNear(std::array{model.MeanAR1Before, model.MeanAR1After}, expected("means"));
    const auto inverses = std::exchange(model.binInverses, {});
    model.rank = 0;
    ASSERT_TRUE(deriveFromDesign(model));
    EXPECT_EQ(model.binInverses, inverses);
    EXPECT_EQ(model.rank, model.GLMPredictors() - each.missingDirections);
    for (const size_t bin : {0, 13, 19})
        expectNear(inverses[bin], expected("bin " + std::to_string(bin)));
}

constexpr auto none = ZTransformation::None;
constexpr auto study = ZTransformation::Study;
constexpr auto studyModel = ZTransformation::StudyModel;
INSTANTIATE_TEST_SUITE_P(
    All, WholeRun,
    testing::Values(Case{"plain", 1, "run"}, Case{"bare", 1, "no constant"},
                    Case{"zeros", 1, "zeros", none, false, 1}, Case{"z", 1, "run", study},
                    Case{"z model", 1, "run", studyModel}, Case{"corrected", 1, "run", none, true},
                    Case{"bare corrected", 1, "no constant", none, true},
                    Case{"zeros corrected", 1, "zeros", studyModel, true, 1},
                    Case{"common", 3, "common"}, Case{"common z", 3, "common", study},
                    Case{"studies", 3, "studies"},
                    Case{"studies z model", 3, "studies", studyModel},
                    Case{"subjects", 3, "subjects"}, Case{"subjects z", 3, "subjects", study},
                    Case{"common corrected", 3, "common", none, true},
                    Case{"studies corrected", 3, "studies", study, true}));

/// Gives no slice from the given one on.
class DamagedRun : public RunInMemory {
public:
    DamagedRun(const FMRProject& project, int firstBad) : RunInMemory(project), bad_(firstBad) {}
    bool loadSlice(int slice, std::span<const int16_t*> points) override {
        return slice < bad_ && RunInMemory::loadSlice(slice, points);
    }

private:
    int bad_;
};

TEST(WholeRunStops, LeavingNothing) {
    struct Stop {
        WholeRunFit result;
        const char* message = nullptr;
        int badSlice = 9;
        int cancelAt = 101; ///< percent
        VolumeSize volume = size;
        std::function<void(WholeRunDesign&)> damage = [](WholeRunDesign&) {};
    };
    using enum WholeRunFit;
    const char* const points =
        "ERROR: Different number of time points between design matrix and data files!";
    const char* const memory = "ERROR: Insufficient memory for creating GLM data structure!";
    const char* const wrongSize = "ERROR: Wrong size of filled design matrix elements";
    const char* const infinite =
        "ERROR: The design matrix contains values that are not finite numbers.";
    const auto addPoint = [](WholeRunDesign& design) {
        ++design.studies[0].dataPoints;
        design.GLMDesign.insert(design.GLMDesign.end(), 4, 1.0f);
    };
    const Stop stops[] = {
        {.result = Cancelled, .cancelAt = 50},
        {.result = Cancelled, .cancelAt = 100},
        {.result = Failed, .badSlice = 1},
        {.result = Failed, .message = points, .volume = {17, 16, 3}},
        {.result = Failed, .message = memory, .volume = {32767, 32767, 30000}},
        {.result = Failed, .message = points, .damage = addPoint},
        {.result = Failed, .message = infinite, .damage = [](auto& d) { d.GLMDesign[7] = NAN; }},
        {.result = Failed, .message = wrongSize, .damage = [](auto& d) { d.GLMDesign.pop_back(); }},
        {.result = Failed, .message = wrongSize, .damage = [](auto& d) { d.studies.resize(2); }},
        {.result = Failed, .message = wrongSize, .damage = [](auto& d) { d = {}; }}};
    const FMRProject project = projectOf(1);
    for (const Stop& stop : stops) {
        SCOPED_TRACE(&stop - stops);
        ScriptedMessages messages;
        if (stop.message != nullptr)
            messages.expectCritical(stop.message);
        WholeRunDesign design = designOf(1, "run");
        stop.damage(design);
        DamagedRun samples(project, stop.badSlice);
        RecordedProgress progress;
        progress.cancelAt = stop.cancelAt;
        WholeRunModel model;
        EXPECT_EQ(fitWholeRunModel(model, design, stop.volume, samples, progress), stop.result);
        EXPECT_TRUE(model.GLMMaps.empty() && model.GLMDesign.empty() && model.studies.empty());
        EXPECT_EQ(model.GLMType, 1);
    }
}

TEST(WholeRunDesignText, HasALineForEachPoint) {
    const QTemporaryDir folder;
    WholeRunDesign design;
    design.predictors.resize(2);
    design.GLMDesign = {1.0f, -0.5f, 12.25f, 0.0f};
    writeDesignText(design, folder.path());
    EXPECT_EQ(contentOf(folder.filePath("DesignMatrix.txt")),
              "1.000000  -0.500000  \n12.250000  0.000000  \n");
    ScriptedMessages messages;
    messages.expectInformation("INFO: Can not write to file <DesignMatrix.txt> - write protected?");
    writeDesignText(design, folder.filePath("missing"));
}

} // namespace
