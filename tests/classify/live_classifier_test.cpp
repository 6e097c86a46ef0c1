// When a run predicts, from which volumes, and that it estimates as an offline analysis does.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_classifier.h"

#include "classify/classify_data.h"
#include "classify/trial_fit.h"
#include "support/conditions.h"

namespace {

constexpr VolumeSize size{4, 3, 2};
constexpr int nrOfVolumes = 40;
constexpr float TR = 2000.0f;

StimulationProtocol twoConditions() {
    StimulationProtocol protocol;
    addCondition(protocol, "A", {{1, 9}, {14, 19}});
    addCondition(protocol, "B", {{10, 13}, {30, 31}});
    addCondition(protocol, "C", {{20, 23}});
    return protocol;
}

class LiveClassifierTest : public testing::Test {
protected:
    LiveClassifierTest() {
        EXPECT_TRUE(volumes.allocate(nrOfVolumes, size.samples()));
        std::mt19937 random(7);
        for (int v = 0; v < nrOfVolumes; ++v)
            for (int16_t& sample : volumes[size_t(v)])
                sample = int16_t(900 + int(random() % 200));
        voxels.append(1, 2, 0);
        voxels.append(3, 0, 1);
        voxels.append(0, 0, 0);
        options.trial.preOnset = 2;
        options.trial.postOnset = 5;
    }
    LiveRun at(int volume) { return {volumes, size, protocol, volume, nrOfVolumes, TR}; }
    /// Volumes at which there was a prediction.
    std::vector<int> predictions() {
        std::vector<int> due;
        classifier.start(modelOf({1, -1}, 3), voxels);
        for (int v = 0; v < nrOfVolumes; ++v) {
            if (classifier.step(at(v), options, fault))
                due.push_back(v);
            EXPECT_EQ(classifier.outputValid(), !due.empty() && due.back() == v) << v;
        }
        return due;
    }

    RunVolumes volumes;
    VoxelList voxels;
    StimulationProtocol protocol = twoConditions();
    LiveOptions options = defaultLiveOptions();
    LiveClassifier classifier;
    QString fault;
};

} // namespace

TEST(CurrentTrial, IsTheLatestOfAllConditionsButTheFirst) {
    StimulationProtocol protocol = twoConditions();
    addCondition(protocol, "D", {{30, 35}, {0, 3}});
    const std::tuple<int, int, int, int> cases[] = {
        // volume, onset, end, condition
        {0, 0, 3, 3},    {8, 0, 3, 3},    {9, 10, 13, 1},  {18, 10, 13, 1},
        {19, 20, 23, 2}, {28, 20, 23, 2}, {29, 30, 35, 3}, {39, 30, 35, 3}};
    for (const auto& [volume, onset, end, condition] : cases) {
        const CurrentTrial trial = currentTrial(protocol, volume);
        EXPECT_EQ(std::tuple(volume, trial.onset, trial.end, trial.condition),
                  std::tuple(volume, onset, end, condition));
    }
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    EXPECT_EQ(currentTrial(protocol, 39).onset, 0);
    protocol.resolutionOfTime = ResolutionOfTime::Volumes;
    protocol.conditions.resize(1);
    EXPECT_EQ(currentTrial(protocol, 39).onset, 0) << "the baseline alone";
}

TEST_F(LiveClassifierTest, TrialEndsAreDueOneVolumeBeforeTheirWindowIsComplete) {
    options.mode = PredictionMode::EndOfTrial;
    using Due = std::vector<int>;
    const std::tuple<int, int, bool, Due> cases[] = {
        {2, 5, false, {14, 24, 34}}, {2, 5, true, {17, 27, 35}}, {2, 9, false, {18, 28, 38}},
        {2, 10, false, {39}}, // the others are replaced before they are due
        {2, 11, false, {}},          {2, 0, false, {9, 19, 29}}, {33, 5, false, {14, 24, 34}},
        {34, 5, false, {}}};
    for (const auto& [pre, post, useDuration, due] : cases) {
        options.trial.preOnset = pre;
        options.trial.postOnset = post;
        options.trial.useTrialDuration = useDuration;
        EXPECT_EQ(predictions(), due) << pre << ' ' << post << ' ' << useDuration;
    }
}

TEST_F(LiveClassifierTest, WithinAConditionEachVolumeFromDelayToDelayedEndIsDue) {
    using Due = std::vector<int>;
    const Due usual{11, 12, 13, 14, 21, 22, 23, 24, 31, 32};
    const Due longer{11, 12, 13, 14, 15, 16, 17, 21, 22, 23, 24, 25, 26, 27, 31, 32, 33, 34, 35};
    const std::tuple<int, int, int, bool, Due> cases[] = {
        {1, 2, 0, false, usual}, {36, 2, 0, false, usual},
        {37, 2, 0, false, {}},                               // 40 points are not below 40 volumes
        {36, 2, 0, true, {}},    {35, 2, 0, true, {31, 32}}, // the third trial is shorter by 2
        {34, 2, 3, false, {}},   {1, 0, 0, false, {9, 10, 11, 12, 19, 20, 21, 22, 29, 30}},
        {1, 2, 3, false, longer}};
    for (const auto& [pre, delay, post, useDuration, due] : cases) {
        options.pointPreOnset = pre;
        options.haemodynamicDelay = delay;
        options.postCondition = post;
        options.trial.useTrialDuration = useDuration;
        EXPECT_EQ(predictions(), due) << pre << ' ' << delay << ' ' << post;
    }
    options.mode = PredictionMode::Continuous;
    EXPECT_EQ(predictions(), Due{});
}

TEST_F(LiveClassifierTest, EstimatesAndPredictsAsOffline) {
    const auto expectLike = [&](int volume, std::vector<int> window, const TrialDesign& design,
                                const char* trial) {
        SCOPED_TRACE(volume);
        classifier.start(modelOf({2, 1}, 3), voxels);
        const std::optional<LivePrediction> made = classifier.step(at(volume), options, fault);
        ASSERT_TRUE(made);
        const size_t places[] = {9, 15, 0}; // x + 4 y + 12 z
        std::vector<float> values(3);
        estimateVoxels({design, options.trial.estimate, options.trial.zNormalization}, volumes,
                       window, places, values);
        const std::vector<double> features(values.begin(), values.end());
        EXPECT_EQ(classifier.patterns().values, features);
        EXPECT_EQ(classifier.patterns().labels, std::vector<double>{0.0});
        const double value = -modelOf({2, 1}, 3).decisionValues(features)[0]; // class 2 comes first
        EXPECT_EQ(made->prediction.output, value);
        EXPECT_EQ(std::vector(classifier.pairValues().begin(), classifier.pairValues().end()),
                  std::vector{float(value)});
        EXPECT_EQ(classifier.predictedClass(), value > 0 ? 1 : 2);
        EXPECT_EQ(
            predictionLine(*made),
            QString("Time point:   %1  last trial onset:   %2  predicted value: %3  predicted "
                    "class:  %4")
                .arg(volume)
                .arg(trial)
                .arg(value, 9)
                .arg(value > 0 ? 1 : 2));
    };
    options.mode = PredictionMode::EndOfTrial;
    for (const TrialEstimate estimate :
         {TrialEstimate::TValue, TrialEstimate::Beta, TrialEstimate::PercentBeta}) {
        options.trial.estimate = estimate;
        options.trial.linearTrend = !options.trial.linearTrend;
        expectLike(14, {8, 9, 10, 11, 12, 13, 14, 14}, trialDesign(options.trial, 3, TR),
                   "10 duration:   4  condition id:  2");
    }
    options.mode = PredictionMode::WithinCondition;
    for (const auto& [volume, window] :
         {std::pair(21, std::vector{18, 19, 20, 21}), {24, {18, 19, 20, 24}}})
        expectLike(volume, window, lastPointDesign(4, options.trial),
                   "20 duration:   4  condition id:  3");
    options.pointPreOnset = 12;
    expectLike(11, {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},
               lastPointDesign(15, options.trial), "10 duration:   4  condition id:  2");
}

TEST_F(LiveClassifierTest, OfSeveralClassesAllPairsAreGiven) {
    classifier.start(modelOf({2, 3, 1}, 3), voxels);
    const std::optional<LivePrediction> made = classifier.step(at(22), options, fault);
    ASSERT_TRUE(made);
    EXPECT_EQ(classifier.nrOfClasses(), 3);
    EXPECT_EQ(classifier.pairValues().size(), 3u);
    EXPECT_EQ(predictionLine(*made), "Time point:   23  last trial onset:   20 duration:   4  "
                                     "condition id:  3  predicted class:  " +
                                         QString::number(classifier.predictedClass()));
    classifier.restart(voxels);
    EXPECT_EQ(classifier.predictedClass(), 0);
}

TEST_F(LiveClassifierTest, AMisfitIsSaidAndPredictsNothing) {
    options.mode = PredictionMode::EndOfTrial;
    classifier.start(modelOf({1, -1}, 5), voxels);
    EXPECT_FALSE(classifier.step(at(14), options, fault));
    EXPECT_EQ(fault, "Classifier does not fit to test data! Expected 3 ROI voxels, but 5 SVM "
                     "features found");
    fault.clear();
    EXPECT_FALSE(classifier.step(at(15), options, fault));
    EXPECT_EQ(fault, "") << "the trial is done with";
    voxels.x[2] = 4;
    classifier.start(modelOf({1, -1}, 3), voxels);
    EXPECT_FALSE(classifier.step(at(14), options, fault));
    EXPECT_TRUE(fault.contains("outside this run"));
    EXPECT_EQ(classifier.patterns().count(), 0);
}

TEST(LiveOptions, FollowTheSettingsOfTheTraining) {
    LiveOptions options = defaultLiveOptions();
    EXPECT_TRUE(options.trial.zNormalization && !options.trial.linearTrend);
    takeTrialSettings({.preOnset = 3,
                       .postOnset = 7,
                       .useTrialDuration = true,
                       .response = TrialResponse::MeanResponse,
                       .linearTrend = true,
                       .estimate = TrialEstimate::PercentBeta,
                       .zNormalization = true,
                       .intensityLimit = 12},
                      options);
    EXPECT_EQ(options.pointPreOnset, 3);
    EXPECT_EQ(options.trial.response, TrialResponse::StandardTwoGamma);
    EXPECT_EQ(trialSettingsReport(options.trial),
              (QStringList{"Adding linear predictor:                   1",
                           "Using trial duration for data window:      1",
                           "Data window pre-onset:                     3",
                           "Data window post-trial:                    7",
                           "Estimating trial responses as percent change values",
                           "Voxels will be excluded (estimated value set to 0) if intensities "
                           "lower than: 12"}));
    EXPECT_EQ(trialSettingsReport(defaultLiveOptions().trial).mid(3, 3),
              (QStringList{"Data window post-onset:                    8",
                           "Estimating trial responses as t values",
                           "Trial time courses will be z normalized"}));
}
