// What plug-ins read and change, at every bound and from volume to volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/classify_data.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "plugin/program_fixture.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <climits>
#include <complex>
#include <numbers>

namespace {

constexpr VolumeSize size{5, 4, 3};
constexpr int planned = 6; // volumes
constexpr int indices[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, INT_MAX};

bool isIn(int value, int end) {
    return value >= 0 && value < end;
}

QString textOf(void (*function)(char*)) {
    std::string text(veloCortivoTextSize, '#');
    function(text.data());
    function(nullptr);
    return text.c_str();
}

QStringList foldersAndName() {
    return {textOf(tGetPluginsPath), textOf(tGetProjectName), textOf(tGetWatchFolder),
            textOf(tGetTargetFolder), textOf(tGetFeedbackFolder)};
}

} // namespace

class PluginFunctions : public PluginProgram {
protected:
    /// A run that is recorded, at the fourth of its volumes. Each of its values tells its place;
    /// the model has three of four predictors, and two of three contrasts have a map in use.
    void beginRun() {
        session().functionalDocument =
            std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        run = session().functionalDocument.get();
        FMRProject& project = run->project;
        project.ResolutionX = size.x;
        project.ResolutionY = size.y;
        project.NrOfSlices = size.slices;
        project.NrOfVolumes = planned;
        ASSERT_TRUE(project.allocateVolumes() && run->glm.allocate(4, size.samples()) &&
                    run->maps.allocateMaps(3, size));
        for (size_t i = 0; i < size.samples(); ++i) {
            for (size_t volume = 0; volume < planned; ++volume)
                project.volumes[volume][i] = int16_t(100 * volume + i + 1);
            for (int p = 0; p < 4; ++p)
                run->glm.row(p)[i] = 1000 * p + double(i) + 0.5;
            for (int map = 0; map < 3; ++map)
                run->maps.map(map)[i] = float(-1000 * map - int(i) - 1);
        }
        run->glm.nrOfActivePredictors = 3;
        run->glm.GLMStartVolume = 2;
        run->maps.NrOfActiveContrasts = 2;
        run->contrasts.NrOfContrasts = 3;
        run->design.NrOfConditionPredictors = 2;
        run->design.NrOfConfoundPredictors = 2;
        run->design.NrOfPredictors = 4;
        for (size_t p = 0; p < 4; ++p)
            for (int t = 0; t < planned; ++t)
                run->design.PredictorColumns[p].push_back(float(p) + 0.1f * float(t) + 1.0f);
        run->volumeTables.VolumeConditionIndex = {0, 0, 1, 2, 0, 1};
        for (const int latest : {3, 2}) {
            RegionOfInterest& region = run->regions.add({});
            region.voxels.append(4, 2, 1);
            region.voxels.append(0, 3, 2);
            region.TimeCourseValues = {11, 12, 13, 14, 0, 0};
            region.CurrentTimePoint = latest;
        }
        run->regions[0].ROIBetas = {2.0f, -1.0f, 500.0f, 3.0f};
        session().report.currentVolume = 3;
        session().phase.enter(Phase::Recording);
    }
    ~PluginFunctions() override { session().phase.enter(Phase::Idle); }

    QtCortivoDoc* run = nullptr;
};

TEST_F(PluginFunctions, WithoutAProgramOrARunThereIsNothing) {
    for (const bool begun : {false, true}) {
        if (begun)
            beginProgram();
        int written = -77;
        tGetDimsOfFunctionalData(&written, &written, &written);
        EXPECT_FALSE(tGetCoordsOfVoxelOfROI(0, 0, &written, &written, &written));
        EXPECT_EQ(written, -77);
        for (const auto function : {tGetCurrentTimePoint, tGetCurrentProtocolCondition})
            EXPECT_EQ(function(), -1);
        for (const auto function :
             {tGetExpectedNrOfTimePoints, tGetFullNrOfPredictors, tGetCurrentNrOfPredictors,
              tGetNrOfConfoundPredictors, tGetNrOfContrasts, tGetNrOfROIs})
            EXPECT_EQ(function(), 0);
        EXPECT_EQ(tGetNrOfVoxelsOfROI(0), -1);
        for (const float value :
             {tGetValueOfDesignMatrix(0, 0), float(tGetBetaOfVoxel(0, 0, 0, 0)),
              tGetValueOfVoxelAtTime(0, 0, 0, 0), tGetMapValueOfVoxel(0, 0, 0, 0), tGetMeanOfROI(0),
              tGetBetaOfROI(0, 0)})
            EXPECT_EQ(value, 0.0f);
        EXPECT_FALSE(tGetBetaMaps() || tGetTimeCourseData() || tGetContrastMaps() ||
                     tGetPluginMaps());
    }
    setProgramAccess(nullptr);
    EXPECT_EQ(foldersAndName().join(""), "");
    EXPECT_FALSE(tRegisterMaps(1));
    tShowPluginMaps(true);
    tUpdateMapList();
    tSetPluginMapsThreshold(1.0f);
    tSetPluginMapName(0, "M");
    tSetDisplayStatusOfMap(0, 1);
}

TEST_F(PluginFunctions, GiveFoldersAndNamesOfTheSettings) {
    int version[3] = {};
    tGetVersionOfVCO(&version[0], &version[1], &version[2]);
    EXPECT_EQ(std::to_array(version), (std::array{3, 2, 5}));
    EXPECT_EQ(textOf(tGetVCOPath), QCoreApplication::applicationDirPath() + "/");
    beginProgram();
    writeSession(5, 2, {{"FeedbackTargetFolder:", QString("\"%1\"").arg(path("fb"))}});
    ASSERT_TRUE(session().inspectSettings());
    EXPECT_EQ(foldersAndName(), (QStringList{path("Plugins_64/"), "test", path("incoming/"),
                                             path("results/"), path("fb/")}));
}

TEST_F(PluginFunctions, GiveTheSizesAndTheProgressOfTheRun) {
    beginProgram();
    beginRun();
    int sizes[3] = {};
    tGetDimsOfFunctionalData(&sizes[0], &sizes[1], &sizes[2]);
    EXPECT_EQ(std::to_array(sizes), (std::array{5, 4, 3}));
    EXPECT_EQ(tGetExpectedNrOfTimePoints(), planned);
    EXPECT_EQ(tGetFullNrOfPredictors(), 4);
    EXPECT_EQ(tGetNrOfConfoundPredictors(), 2);
    EXPECT_EQ(tGetCurrentNrOfPredictors(), 3);
    EXPECT_EQ(tGetNrOfContrasts(), 3);
    EXPECT_EQ(tGetNrOfROIs(), 2);
    // A reloaded run is behind its last volume.
    for (const auto& [volume, timePoint, condition] :
         {std::tuple(-1, 0, -1), {0, 1, 0}, {3, 4, 2}, {5, 6, 1}, {6, 6, -1}}) {
        session().report.currentVolume = volume;
        EXPECT_EQ(tGetCurrentTimePoint(), timePoint);
        EXPECT_EQ(tGetCurrentProtocolCondition(), condition);
    }
}

TEST_F(PluginFunctions, GiveTheValuesOfEachPlaceAndNoneOutside) {
    beginProgram();
    beginRun();
    for (const bool active : {true, false}) {
        session().phase.enter(active ? Phase::Recording : Phase::Idle);
        for (const int index : indices)
            for (const int x : indices)
                for (const int y : indices)
                    for (const int z : indices) {
                        const bool inside = isIn(x, 5) && isIn(y, 4) && isIn(z, 3);
                        const int at = inside ? 20 * z + 5 * y + x : 0;
                        const float sample = inside && isIn(index, 4) ? 100 * index + at + 1 : 0;
                        const double beta =
                            active && inside && isIn(index, 3) ? 1000 * index + at + 0.5 : 0.0;
                        const float map = inside && isIn(index, 2) ? -1000 * index - at - 1 : 0;
                        ASSERT_EQ(tGetValueOfVoxelAtTime(x, y, z, index), sample);
                        ASSERT_EQ(tGetBetaOfVoxel(index, x, y, z), beta);
                        ASSERT_EQ(tGetMapValueOfVoxel(index, x, y, z), map);
                    }
        for (const int p : indices)
            for (const int t : indices)
                EXPECT_EQ(tGetValueOfDesignMatrix(p, t),
                          active && isIn(p, 4) && isIn(t, 4) ? float(p) + 0.1f * float(t) + 1 : 0);
        EXPECT_EQ(tGetTimeCourseData()[4][59], 460);
        EXPECT_EQ(tGetContrastMaps()[2 * 60 + 59], -2060.0f);
        EXPECT_EQ(tGetBetaMaps() != nullptr, active);
    }
    session().phase.enter(Phase::Recording);
    EXPECT_EQ(tGetBetaMaps()[2 * 60 + 59], 2059.5);
    run->glm.GLMStartVolume = GLMState::notStarted;
    EXPECT_EQ(tGetCurrentNrOfPredictors(), 0);
    EXPECT_EQ(tGetBetaOfVoxel(0, 0, 0, 0), 0.0);
}

TEST_F(PluginFunctions, GiveWhatRegionsHaveAndNothingOfOthers) {
    beginProgram();
    beginRun();
    for (const int roi : indices) {
        SCOPED_TRACE(roi);
        EXPECT_EQ(tGetMeanOfROI(roi), roi == 0 ? 14.0f : 0.0f) << "the second one isn't known yet";
        EXPECT_EQ(tGetNrOfVoxelsOfROI(roi), isIn(roi, 2) ? 2 : -1);
        for (const int index : indices) {
            // Those of conditions are stored in percent of the constant.
            constexpr float betas[] = {10.0f, -5.0f, 500.0f, 3.0f};
            EXPECT_EQ(tGetBetaOfROI(roi, index), roi == 0 && isIn(index, 4) ? betas[index] : 0.0f);
            std::array<int, 3> place{};
            EXPECT_EQ(tGetCoordsOfVoxelOfROI(roi, index, &place[0], &place[1], &place[2]),
                      isIn(roi, 2) && isIn(index, 2));
            if (isIn(roi, 2) && isIn(index, 2)) {
                EXPECT_EQ(place, index == 0 ? (std::array{4, 2, 1}) : (std::array{0, 3, 2}));
            }
        }
    }
}

// What there is when plug-ins are called: the volume at hand with its sample, and the model up to
// the volume before until the volume is part of it.
TEST_F(PluginFunctions, FollowARunFromVolumeToVolume) {
    struct Caller : ProbeListener {
        using ProbeListener::ProbeListener;
        void runPrepared(QtCortivoDoc&) override {
            EXPECT_EQ(tGetExpectedNrOfTimePoints(), 30);
            EXPECT_EQ(tGetCurrentTimePoint(), 0);
            EXPECT_EQ(tGetValueOfVoxelAtTime(3, 2, 1, 0), 0.0f);
        }
    } caller(session().listeners, ListenerPlace::PlugIn);
    std::vector<int> predictors; // after each volume
    double beta = 0.0;           // of the latest model
    caller.onBeforeVolume = [&](int volume) {
        EXPECT_EQ(tGetCurrentTimePoint(), volume + 1);
        EXPECT_EQ(tGetValueOfVoxelAtTime(3, 2, 1, volume), scriptedSample(64 + 2 * 8 + 3, volume));
        EXPECT_EQ(tGetValueOfVoxelAtTime(3, 2, 1, volume + 1), 0.0f);
        EXPECT_EQ(tGetCurrentNrOfPredictors(), volume > 0 ? predictors.back() : 0);
        EXPECT_EQ(tGetBetaOfVoxel(0, 3, 2, 1), beta);
        return true;
    };
    caller.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (step != VolumeStep::AfterModel)
            return true;
        predictors.push_back(tGetCurrentNrOfPredictors());
        EXPECT_EQ(tGetBetaOfVoxel(0, 3, 2, 1) != beta, predictors.back() > 0) << hand.volume;
        beta = tGetBetaOfVoxel(0, 3, 2, 1);
        return true;
    };
    beginProgram();
    writeSession(30, 0);
    session().runButtonPressed();
    EXPECT_EQ(predictors.size(), 30u);
    EXPECT_EQ(predictors.front(), 0);
    EXPECT_EQ(predictors.back(), tGetFullNrOfPredictors());
    EXPECT_TRUE(std::ranges::is_sorted(predictors));
    EXPECT_EQ(tGetCurrentTimePoint(), 30);
    EXPECT_EQ(tGetBetaOfVoxel(0, 3, 2, 1), 0.0) << "betas are those of a run that goes on";
}

TEST_F(PluginFunctions, GiveTheClassifierOfTheRun) {
    struct Screen : ClassifierScreen {
        void log(const QString& text) override { lines << text; }
        void refreshControls() override {}
        QStringList lines;
    } screen;
    std::array<float, 3> pairs{};
    const auto answers = [&pairs] {
        pairs.fill(-77);
        return std::pair(tGetNumberOfClasses(), tGetCurrentClassifierOutput(pairs.data()));
    };
    EXPECT_EQ(answers(), std::pair(-3, -3));
    beginProgram();
    EXPECT_EQ(answers(), std::pair(-3, -3));

    writeSession(30, 0);
    VoxelList voxels;
    for (const auto& [x, y, z] : {std::tuple(1, 2, 0), {7, 7, 3}, {0, 0, 1}, {4, 1, 2}})
        voxels.append(x, y, z);
    QDir().mkpath(path("results"));
    put("results/VoxelsUsedForTraining.txt", voxelsText(voxels));
    put("results/SingleTrialGLMSettings.txt", trialSettingsText({}));
    EXPECT_TRUE(modelOf({1, 2, 3}, 4).save(path("results/Model_test.svm")));
    session().settings.TargetFolder = path("results/");
    session().classifier.open(screen);
    EXPECT_EQ(answers(), std::pair(-2, -2));
    session().classifier.chooseModel(path("results/Model_test.svm"));
    session().classifier.toggleIncrementalPrediction();

    qsizetype predictions = 0;
    ProbeListener operatorHand(session().listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [&](int volume) {
        const auto [classes, predicted] = answers();
        EXPECT_EQ(classes, 3);
        const QStringList lines = screen.lines.filter("Time point:");
        if (lines.size() == predictions) {
            EXPECT_EQ(predicted, 0) << volume;
            EXPECT_EQ(pairs, (std::array{-77.0f, -77.0f, -77.0f}));
            return;
        }
        // The class with the most votes of the pairs 1 and 2, 1 and 3, 2 and 3.
        const auto favours = [&pairs](size_t pair) { return pairs[pair] > 0.0f; };
        const int votes[] = {favours(0) + favours(1), !favours(0) + favours(2),
                             !favours(1) + !favours(2)};
        EXPECT_EQ(votes[predicted - 1], *std::ranges::max_element(votes)) << volume;
        EXPECT_TRUE(lines.last().endsWith(QString("class:  %1").arg(predicted))) << volume;
        EXPECT_EQ(tGetCurrentClassifierOutput(nullptr), predicted);
        predictions = lines.size();
    };
    session().runButtonPressed();
    EXPECT_GT(predictions, 3);
    session().classifier.close();
}

TEST_F(PluginFunctions, PassOnWhatAPluginShows) {
    beginProgram();
    const RegisteredPluginMaps& maps = session().requests.pluginMaps;
    EXPECT_FALSE(tRegisterMaps(0));
    EXPECT_TRUE(tRegisterMaps(3));
    EXPECT_EQ(maps.count(), 3);
    tSetPluginMapName(1, "M\xc3\xbc");
    EXPECT_EQ(maps.name(1), QString::fromUtf8("M\xc3\xbc"));
    tSetPluginMapName(2, ("a\n\tb " + QByteArray(5000, 'x')).constData());
    EXPECT_EQ(maps.name(2), "a b " + QString(96, 'x'));
    tSetDisplayStatusOfMap(2, 2);
    EXPECT_EQ(maps.state(2), 2);
    tSetPluginMapsThreshold(1.25f);
    EXPECT_EQ(maps.threshold, 1.25f);
    tShowPluginMaps(true);
    EXPECT_TRUE(maps.shown);
    display.calls.clear();
    tUpdateMapList();
    EXPECT_EQ(display.calls, QStringList("views"));
    tShowPluginMaps(false);
    EXPECT_FALSE(maps.shown);

    beginRun();
    EXPECT_EQ(tGetPluginMaps(), nullptr) << "registered too late";
    ASSERT_TRUE(run->pluginMaps.allocate(2, size));
    tGetPluginMaps()[60 + 9] = 4.0f;
    EXPECT_EQ(run->pluginMaps.map(1)[9], 4.0f);
}

namespace {

template<typename Number, typename Product, typename VectorProduct>
void expectProducts(Product* matrixProduct, VectorProduct* vectorProduct) {
    using Numbers = std::vector<Number>;
    const Numbers a{1, 2, 3, 4, 5, 6}; // 2 x 3
    const Numbers aTransposed{1, 4, 2, 5, 3, 6};
    const Numbers b{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}; // 3 x 4
    const Numbers bTransposed{1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12};
    for (const bool isATransposed : {false, true})
        for (const bool isBTransposed : {false, true}) {
            Numbers c(8, -77);
            matrixProduct((isATransposed ? aTransposed : a).data(),
                          (isBTransposed ? bTransposed : b).data(), c.data(), 2, 4, 3,
                          isATransposed, isBTransposed);
            EXPECT_EQ(c, (Numbers{38, 44, 50, 56, 83, 98, 113, 128}));
        }
    Numbers y(3, -77);
    vectorProduct(a.data(), b.data(), y.data(), 2, 3, false);
    EXPECT_EQ(y, (Numbers{14, 32, -77}));
    vectorProduct(a.data(), b.data(), y.data(), 2, 3, true);
    EXPECT_EQ(y, (Numbers{9, 12, 15}));
    // A size of 0 writes nothing.
    matrixProduct(a.data(), b.data(), y.data(), 1, 3, 0, false, false);
    vectorProduct(a.data(), b.data(), y.data(), 0, 3, true);
    EXPECT_EQ(y, (Numbers{9, 12, 15}));
}

} // namespace

TEST(PluginNumerics, ProductsOfMatrices) {
    expectProducts<float>(t_intel_matrix_matrix_mult_f, t_intel_matrix_vector_mult_f);
    expectProducts<double>(t_intel_matrix_matrix_mult_d, t_intel_matrix_vector_mult_d);
}

// One voxel of 2 x 3 x 4 becomes a plane wave.
TEST(PluginNumerics, TransformsThereAndBack) {
    constexpr int voxel = 12 + 2 * 4 + 3; // at 1, 2, 3
    auto* values = static_cast<float*>(t_fftwf_malloc(sizeof(float) * 24));
    auto* spectrum = static_cast<fftwf_complex*>(t_fftwf_malloc(sizeof(fftwf_complex) * 18));
    const fftwf_plan there = t_fftwf_plan_dft_r2c_3d(2, 3, 4, values, spectrum, FFTW_ESTIMATE);
    const fftwf_plan back = t_fftwf_plan_dft_c2r_3d(2, 3, 4, spectrum, values, FFTW_ESTIMATE);
    for (int i = 0; i < 24; ++i)
        values[i] = i == voxel ? 5.0f : 0.0f;
    t_fftwf_execute(there);
    for (int k = 0; k < 18; ++k) {
        const double turns = k / 9 / 2.0 + k / 3 % 3 * 2 / 3.0 + k % 3 * 3 / 4.0;
        const std::complex<double> wave = std::polar(5.0, -2 * std::numbers::pi * turns);
        EXPECT_NEAR(double(spectrum[k][0]), wave.real(), 1e-5) << k;
        EXPECT_NEAR(double(spectrum[k][1]), wave.imag(), 1e-5) << k;
    }
    t_fftwf_execute(back);
    for (int i = 0; i < 24; ++i)
        EXPECT_NEAR(values[i], i == voxel ? 120.0f : 0.0f, 1e-4f) << i;
    t_fftwf_destroy_plan(there);
    t_fftwf_destroy_plan(back);
    t_fftwf_free(values);
    t_fftwf_free(spectrum);
}
