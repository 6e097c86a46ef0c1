// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_files.h"
#include "decoder/empirical_responses.h"
#include "decoder/ideal_responses.h"
#include "support/expected_table.h"

#include <limits>

namespace {

/// Written by make_responses_expected.py.
constexpr const char* table = "decoder/expected_responses.tsv";

void expectNear(const std::vector<float>& curve, const Cells& values, double tolerance) {
    ASSERT_EQ(curve.size(), size_t(values.size()));
    for (size_t point = 0; point < curve.size(); ++point)
        EXPECT_NEAR(curve[point], values[qsizetype(point)].toDouble(), tolerance) << point;
}

TEST(IdealResponses, AreThoseOfTheClosedForm) {
    for (const Cells& row : expectedLines(table, "ideal")) {
        SCOPED_TRACE(row.first(3).join(' ').toStdString());
        expectNear(idealResponses(row[0].toInt(), row[1].toDouble())[size_t(row[2].toInt())],
                   row.mid(3), 2e-4); // percent; of the steps of 1 ms
    }
    for (const double TR : {0.0, -1.0, std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(idealResponses(3, TR)[8], std::vector<float>(3, 100.0f));
    EXPECT_TRUE(idealResponses(-1, 2000.0)[0].empty());
}

TEST(IdealResponses, StandInTheFileThatComesWithTheProgram) {
    const DecoderSettings settings = defaultDecoderSettings();
    const double TR = 70000.0 / settings.FullWindowSize;
    const ReferenceCurves references = idealResponses(settings.IdealResponseWindowSize, TR);
    const QString file = VELO_SOURCE_DIR "/src/resources/decoder/" + idealResponsesFileName;
    const QString fresh = "decoder_" + idealResponsesFileName; // in the folder of the test
    if (contentOf(file) == referencesText(references))
        return;
    ASSERT_TRUE(writeReferences(references, fresh));
    FAIL() << "The file in the tree should be " << QFileInfo(fresh).filePath().toStdString();
}

std::vector<std::vector<float>> trainingRun() {
    std::vector<std::vector<float>> curves;
    for (const Cells& cells : expectedLines(table, "run"))
        curves.push_back(numbersOf<float>(cells));
    return curves;
}

/// One to three trials of each condition; some are cut by an end of the data, or behind it. With a
/// TR in milliseconds, up to 0.4 volumes beside the start of a volume.
StimulationProtocol trainingProtocol(int TR) {
    StimulationProtocol protocol;
    if (TR > 0)
        protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    for (int c = 0; c < 10; ++c) {
        protocol.conditionIndex(QString("Condition %1").arg(c));
        for (int i = 0; c > 0 && i < 1 + c % 3; ++i) {
            const int volume = 31 * (c - 1) + 113 * i;
            const int from = TR > 0 ? volume * TR + (c - 5) * (TR / 10) : volume + 1;
            protocol.addInterval(c, from, from + 5);
        }
    }
    return protocol;
}

TEST(EmpiricalResponses, AreTheMeanOfTheTrials) {
    const std::vector<std::vector<float>> curves = trainingRun();
    for (const Cells& row : expectedLines(table, "empirical")) {
        SCOPED_TRACE(row.first(8).join(' ').toStdString());
        const EmpiricalOptions options{.WindowTimePoints = row[0].toInt(),
                                       .PreTrialBeginDataPoints = row[1].toInt(),
                                       .PostTrialDataPoints = row[2].toInt(),
                                       .ShortestTaskDuration = row[3].toInt(),
                                       .rois = ResponseROIs(row[4].toInt())};
        const int TR = row[6].toInt();
        const auto responses =
            empiricalResponses(options, curves, trainingProtocol(row[5] == "1" ? TR : 0), TR);
        ASSERT_TRUE(responses);
        expectNear((*responses)[size_t(row[7].toInt())], row.mid(8), 1e-4);
    }
}

TEST(EmpiricalResponses, SayWhyTheyCannotBeMade) {
    const QString few = "WARNING - Can not create reference file: not enough ROIs.";
    const QString conditions = "WARNING - Can not create reference file: protocol needs to have 10 "
                               "conditions (rest + 3 tasks with 3 durations).";
    struct Case {
        ResponseROIs rois;
        int nrOfROIs;
        int nrOfConditions;
        QString fault;
    };
    const std::vector<std::vector<float>> run = trainingRun();
    for (const Case& c : {Case{ResponseROIs::Tasks, 3, 10, {}},
                          {ResponseROIs::Tasks, 2, 9, few},
                          {ResponseROIs::Tasks, 3, 9, conditions},
                          {ResponseROIs::Helpers, 6, 11, conditions},
                          {ResponseROIs::Helpers, 5, 10, few},
                          {ResponseROIs::All, 5, 10, few},
                          {ResponseROIs::All, 6, 10, {}}}) {
        SCOPED_TRACE(c.nrOfROIs);
        StimulationProtocol protocol = trainingProtocol(0);
        protocol.conditions.resize(size_t(c.nrOfConditions));
        EXPECT_EQ(empiricalFault({.rois = c.rois}, c.nrOfROIs, protocol), c.fault);
        EXPECT_EQ(empiricalResponses({.rois = c.rois}, std::span(run).first(size_t(c.nrOfROIs)),
                                     protocol, 2000.0)
                      .has_value(),
                  c.fault.isEmpty());
    }
    for (const EmpiricalOptions& options :
         {EmpiricalOptions{.WindowTimePoints = 0},
          {.WindowTimePoints = 1000},
          {.PreTrialBeginDataPoints = -1},
          {.PostTrialDataPoints = std::numeric_limits<int>::max()},
          {.ShortestTaskDuration = 0}})
        EXPECT_FALSE(empiricalResponses(options, run, trainingProtocol(0), 2000.0));
    // A duration whose only trial begins behind the data, and times that can't be turned into
    // volumes.
    StimulationProtocol protocol = trainingProtocol(0);
    for (const size_t c : {3, 6, 9})
        protocol.conditions[c].nrOfIntervals = 0;
    protocol.addInterval(9, int(run[0].size()) + 1, int(run[0].size()) + 9);
    EXPECT_FALSE(empiricalResponses({}, run, protocol, 2000.0));
    EXPECT_FALSE(empiricalResponses({}, run, trainingProtocol(2000), 0.0));
}

} // namespace
