// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/whole_run_glm.h"
#include "support/files.h"
#include "support/recorded_progress.h"
#include "support/scripted_messages.h"
#include "volume/fmr_project.h"

#include <QTemporaryDir>
#include <cmath>
#include <map>

namespace {

// Samples and designs are those of make_whole_run_expected.py, in which they are written once more.

constexpr int lengths[] = {61, 45, 50};
constexpr int subjects[] = {0, 0, 1};
constexpr size_t nrOfPatterns = 8;       ///< of voxels, in turn
constexpr VolumeSize size = {17, 16, 2}; ///< a slice is a full block and a part of one

int sixteenths(int condition, int study, int t) {
    const bool on = (t + 4 * study) / 6 % 3 == condition + 1;
    return on ? (t * (3 + 2 * condition) + study * 5) % 17 : 0;
}

std::vector<int> samplesOf(int pattern, int study) {
    std::vector<int> values;
    uint32_t state = uint32_t(12345 + 977 * pattern + 7919 * study);
    int noise = 0;
    for (int t = 0; t < lengths[study]; ++t) {
        state = (state * 1103515245u + 12345u) & 0x7fffffffu;
        noise = (noise * (pattern % 4) >> 2) + int((state >> 16) % 61) - 30;
        values.push_back(pattern == 6 ? 500
                                      : 200 + 4900 * pattern % 31000 + 40 * study + noise + t / 4 +
                                            (pattern * sixteenths(0, study, t) >> 1) -
                                            sixteenths(1, study, t));
    }
    if (pattern == 5 && study > 0) // where the second value stands in for the first
        values[0] = -20000;
    if (pattern == 7 && study == 1) // just at the limit
        values[1] = values.back() = 100;
    return values;
}

FMRProject projectOf(int nrOfStudies) {
    FMRProject project;
    project.ResolutionX = size.x;
    project.ResolutionY = size.y;
    project.NrOfSlices = size.slices;
    project.NrOfVolumes = 0;
    for (int s = 0; s < nrOfStudies; ++s)
        project.NrOfVolumes += lengths[s];
    EXPECT_TRUE(project.allocateVolumes());
    for (size_t pattern = 0; pattern < nrOfPatterns; ++pattern)
        for (size_t volume = 0, s = 0; s < size_t(nrOfStudies); ++s)
            for (const int sample : samplesOf(int(pattern), int(s))) {
                for (size_t v = pattern; v < size.samples(); v += nrOfPatterns)
                    project.volumes[volume][v] = int16_t(sample);
                ++volume;
            }
    return project;
}

/// The values of a row besides those of the two conditions.
std::vector<float> confounds(const std::string& layout, int t) {
    const float trend = float(t) / 64.0f;
    if (layout == "run")
        return {1.0f, trend};
    return layout == "zeros" ? std::vector<float>{0.0f, 1.0f, trend} : std::vector<float>{trend};
}

WholeRunDesign designOf(int nrOfStudies, const std::string& layout) {
    WholeRunDesign design;
    for (int s = 0; s < nrOfStudies; ++s) {
        design.studies.emplace_back().dataPoints = lengths[s];
        for (int t = 0; t < lengths[s]; ++t) {
            std::vector<float> row(2);
            size_t group = 0;
            if (nrOfStudies == 1) {
                for (const float value : confounds(layout, t))
                    row.push_back(value);
            } else {
                const size_t groups = layout == "common" ? 1 : layout == "studies" ? 3 : 2;
                group = layout == "studies" ? size_t(s) : groups == 2 ? size_t(subjects[s]) : 0;
                row.assign(2 * groups + 3, 0.0f);
                row[2 * groups + size_t(s)] = 1.0f;
            }
            for (int j = 0; j < 2; ++j)
                row[2 * group + size_t(j)] = float(sixteenths(j, s, t)) / 16.0f;
            design.GLMDesign.insert(design.GLMDesign.end(), row.begin(), row.end());
            design.predictors.resize(row.size());
        }
    }
    const size_t others =
        nrOfStudies == 3 ? 3 : confounds(layout, 0).size(); // behind the conditions
    for (size_t j = 0; j < design.predictors.size(); ++j)
        design.conditionOfColumn.push_back(j + others < design.predictors.size() ? int(j % 2) : -1);
    return design;
}

using Table = std::map<std::string, std::vector<double>>;

/// Lines of the table by case and name.
const Table& expectedTable() {
    static const Table table = [] {
        Table lines;
        for (const QByteArray& line :
             contentOf(VELO_SOURCE_DIR "/tests/stats/expected_whole_run.tsv").split('\n')) {
            const QList<QByteArray> cells = line.split('\t');
            for (qsizetype i = 2; i < cells.size(); ++i)
                lines[(cells[0] + ": " + cells[1]).toStdString()].push_back(cells[i].toDouble());
        }
        return lines;
    }();
    return table;
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
    void expectLine(const std::string& name, std::span<const float> found) const {
        const std::string key = GetParam().name + (": " + name);
        ASSERT_TRUE(expectedTable().contains(key)) << key;
        const std::vector<double>& exact = expectedTable().at(key);
        ASSERT_EQ(found.size(), exact.size()) << key;
        for (size_t i = 0; i < exact.size(); ++i)
            EXPECT_NEAR(double(found[i]), exact[i], 2e-7 * std::abs(exact[i]) + 2e-9)
                << key << " " << i;
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
    for (size_t v = 0; v < size.samples(); ++v) {
        std::vector<float> found;
        for (int row = 0; row < model.nrOfMapRows(); ++row)
            found.push_back(model.row(row)[v]);
        expectLine("voxel " + std::to_string(v % nrOfPatterns), found);
    }
    expectLine("inverse", model.GLMInverse);
    EXPECT_EQ(model.rank, model.GLMPredictors() - each.missingDirections);
    if (!each.corrects) {
        EXPECT_EQ(model.MeanAR1Before, -2.0f);
        EXPECT_EQ(model.MeanAR1After, -2.0f);
        return;
    }
    expectLine("means", std::array{model.MeanAR1Before, model.MeanAR1After});
    const auto inverses = model.binInverses;
    model.binInverses.clear();
    model.rank = 0;
    ASSERT_TRUE(deriveFromDesign(model));
    EXPECT_EQ(model.binInverses, inverses);
    EXPECT_EQ(model.rank, model.GLMPredictors() - each.missingDirections);
    for (const size_t bin : {0, 13, 19})
        expectLine("bin " + std::to_string(bin), inverses[bin]);
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
        int badSlice;
        int cancelAt; ///< percent
        VolumeSize volume;
        int morePoints;
        const char* message;
    };
    using enum WholeRunFit;
    const VolumeSize huge = {32767, 32767, 30000};
    const char* const points =
        "ERROR: Different number of time points between design matrix and data files!";
    const char* const memory = "ERROR: Insufficient memory for creating GLM data structure!";
    const Stop stops[] = {
        {Cancelled, 9, 50, size, 0, nullptr},     {Cancelled, 9, 100, size, 0, nullptr},
        {Failed, 1, 101, size, 0, nullptr},       {Failed, 9, 101, size, 1, points},
        {Failed, 9, 101, {17, 16, 3}, 0, points}, {Failed, 9, 101, huge, 0, memory}};
    for (const Stop& stop : stops) {
        ScriptedMessages messages;
        if (stop.message != nullptr)
            messages.expectCritical(stop.message);
        const FMRProject project = projectOf(1);
        WholeRunDesign design = designOf(1, "run");
        design.studies[0].dataPoints += stop.morePoints;
        for (int i = 0; i < 4 * stop.morePoints; ++i)
            design.GLMDesign.push_back(1.0f);
        DamagedRun samples(project, stop.badSlice);
        RecordedProgress progress;
        progress.cancelAt = stop.cancelAt;
        WholeRunModel model;
        EXPECT_EQ(fitWholeRunModel(model, design, stop.volume, samples, progress), stop.result);
        EXPECT_TRUE(model.GLMMaps.empty() && model.GLMDesign.empty() && model.studies.empty());
        EXPECT_EQ(model.GLMType, 1);
    }
}

TEST(WholeRunStops, AtDesignsThatAreDamaged) {
    const auto refuse = [](const WholeRunDesign& design, const QString& message) {
        ScriptedMessages messages;
        messages.expectCritical(message);
        const FMRProject project = projectOf(1);
        RunInMemory samples(project);
        RecordedProgress progress;
        WholeRunModel model;
        EXPECT_EQ(fitWholeRunModel(model, design, size, samples, progress), WholeRunFit::Failed);
    };
    WholeRunDesign design = designOf(1, "run");
    design.GLMDesign[7] = NAN;
    refuse(design, "ERROR: The design matrix contains values that are not finite numbers.");
    design.GLMDesign.pop_back();
    refuse(design, "ERROR: Wrong size of filled design matrix elements");
    design.studies.emplace_back();
    refuse(design, "ERROR: Wrong size of filled design matrix elements");
    refuse({}, "ERROR: Wrong size of filled design matrix elements");
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
