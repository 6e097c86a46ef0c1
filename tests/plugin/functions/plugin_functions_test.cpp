// What a plug-in is told before, during and after a run, by every function and at every bound.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/classify_data.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "plugin/functions/probe.h"
#include "plugin/functions/run_truth.h"
#include "stats/design_matrix_rtc.h"

#include <QRegularExpression>
#include <complex>
#include <numbers>

namespace {

const char protocol[] = "\nRest\n2\n1 4\n9 20\nColor: 100 100 100\n"
                        "\nA\n1\n5 8\nColor: 255 0 0\n\nB\n1\n21 26\nColor: 0 0 255\n";

/// Asks at the moments at which plug-ins are called.
class Caller : public RunListener {
public:
    explicit Caller(RunListeners& listeners) { listeners.add(*this, ListenerPlace::PlugIn); }
    std::function<void(const Moment&)> ask;

    void documentsArrived(QtCortivoDoc&) override { ask({.prepared = false}); }
    void runPrepared(QtCortivoDoc&) override { ask({}); }
    bool beforeVolume(const VolumeAtHand& hand) override {
        const int v = hand.volume;
        ask({true, true, v, v - 1, v - 1, v > 4});
        return true;
    }
    bool atStep(VolumeStep step, const VolumeAtHand& hand) override {
        const int v = hand.volume;
        if (step == VolumeStep::AfterModel)
            ask({true, true, v, v, v, v > 4});
        return true;
    }
    void loopEnded(QtCortivoDoc&) override { ask({true, false, 39, 39, 39, 1}); }
};

QMap<QString, QString> textsOf(const std::vector<Answer>& answers) {
    QMap<QString, QString> texts;
    for (const Answer& answer : answers)
        if (answer.name.endsWith("Path") || answer.name.endsWith("Folder") ||
            answer.name.endsWith("ProjectName"))
            texts[answer.name] = answer.text;
    return texts;
}

/// Compares all numbers with the truth.
void expectTruth(const std::vector<Answer>& answers, const RunTruth& truth, const Moment& moment) {
    const QMap<QString, QString> texts = textsOf(answers);
    static const QRegularExpression fitted("Beta|betas|Map|maps|Mean");
    for (const Answer& answer : answers) {
        if (texts.contains(answer.name))
            continue;
        const double expected = truth.answer(moment, answer.name, answer.arguments);
        const bool computed = answer.name.contains(fitted);
        const double tolerance = computed ? 1e-3 + 1e-4 * std::abs(expected) : 1e-9;
        QStringList arguments;
        for (const int argument : answer.arguments)
            arguments << QString::number(argument);
        EXPECT_NEAR(answer.text.toDouble(), expected, tolerance)
            << answer.name.toStdString() << '(' << arguments.join(',').toStdString() << ") at "
            << moment.volume << (moment.active ? " active " : " idle ") << moment.modelled;
    }
}

/// Values by name, in the order of the calls.
std::map<QString, std::vector<double>> valuesOf(const std::vector<Answer>& answers) {
    std::map<QString, std::vector<double>> values;
    for (const Answer& answer : answers)
        values[answer.name].push_back(answer.text.toDouble());
    return values;
}

} // namespace

class PluginFunctions : public ProbedSession {};

TEST_F(PluginFunctions, AnswerAsTheRunGoesOn) {
    using Asked = std::pair<Moment, std::vector<Answer>>;
    std::vector<Asked> asked;
    const auto ask = [&](const Moment& moment) {
        asked.emplace_back(moment, probe.ask("probeState"));
    };
    const Moment nothing{.document = false, .prepared = false};
    ask(nothing);
    EXPECT_EQ(textsOf(asked.back().second).value("tGetProjectName", "-"), QString());
    beginProgram();
    ask(nothing);
    EXPECT_EQ(textsOf(asked.back().second).value("tGetPluginsPath"), path("Plugins_64/"));

    writeSession(42, 2, {{"FeedbackTargetFolder:", QString("\"%1\"").arg(path("fb"))}},
                 defaultProtocol().section("Fixation", 0, 0) + protocol);
    Caller caller(session.listeners);
    caller.ask = ask;
    script.atVolume = [&](int volume) {
        EXPECT_EQ(volume == 5 && session.regions.selectRectangle({1, 2, 4, 3, 6}), volume == 5);
    };
    session.runButtonPressed();
    EXPECT_EQ(asked.size(), 2u + 2 + 2 * 40 + 1);
    EXPECT_EQ(textsOf(probe.ask("probeState")),
              (QMap<QString, QString>{{"tGetVCOPath", QCoreApplication::applicationDirPath() + "/"},
                                      {"tGetPluginsPath", path("Plugins_64/")},
                                      {"tGetProjectName", "test"},
                                      {"tGetWatchFolder", path("incoming/")},
                                      {"tGetTargetFolder", path("results/")},
                                      {"tGetFeedbackFolder", path("fb/")}}));
    ask({true, false, 39, 39, 39, 1});
    caller.ask = [](const Moment&) {};
    EXPECT_TRUE(session.reloadData());
    ask({true, false, 40, 39, 39, 1});

    // The design that was used, held against the saved one, which has fewer digits.
    RTCFile saved;
    EXPECT_EQ(parseRTC(content("results/test_WithConfounds_run-1.rtc"), saved), RTCParseResult::Ok);
    ASSERT_EQ(saved.columns.size(), 4u);
    std::vector<std::vector<double>> design(4, std::vector<double>(40));
    for (const Answer& answer : asked[3 + 2 * 40].second)
        if (answer.name == "design") {
            const auto predictor = size_t(answer.arguments[0]),
                       volume = size_t(answer.arguments[1]);
            design[predictor][volume] = answer.text.toDouble();
            EXPECT_NEAR(design[predictor][volume], double(saved.columns[predictor][volume]), 1e-6);
        }
    const RunTruth truth(design);
    for (const auto& [moment, answers] : asked)
        expectTruth(answers, truth, moment);
}

TEST_F(PluginFunctions, GiveTheClassifierOfTheRun) {
    class Screen : public ClassifierScreen {
        void log(const QString& text) override { lines << text; }
        void refreshControls() override {}

    public:
        QStringList lines;
    } screen;
    const auto answers = [this] {
        std::vector<QString> texts;
        for (const Answer& answer : probe.ask("probeClassifier"))
            texts.push_back(answer.text);
        return texts;
    };
    const auto closed = std::vector<QString>{"-3", "-3", "-77", "-77", "-77"};
    EXPECT_EQ(answers(), closed);
    beginProgram();
    EXPECT_EQ(answers(), closed);

    writeSession(30, 0, {}, defaultProtocol().section("Fixation", 0, 0) + protocol);
    VoxelList voxels;
    for (const auto& [x, y, z] : {std::tuple(1, 2, 0), {7, 7, 3}, {0, 0, 1}, {4, 1, 2}})
        voxels.append(x, y, z);
    QDir().mkpath(path("results"));
    put("results/VoxelsUsedForTraining.txt", voxelsText(voxels));
    put("results/SingleTrialGLMSettings.txt", trialSettingsText({}));
    EXPECT_TRUE(modelOf({1, 2, 3}, 4).save(path("results/Model_test.svm")));
    session.settings.TargetFolder = path("results/");
    session.classifier.open(screen);
    const auto off = std::vector<QString>{"-2", "-2", "-77", "-77", "-77"};
    EXPECT_EQ(answers(), off);
    session.classifier.chooseModel(path("results/Model_test.svm"));
    session.classifier.toggleIncrementalPrediction();
    const auto silent = std::vector<QString>{"3", "0", "-77", "-77", "-77"};
    EXPECT_EQ(answers(), silent);

    qsizetype predictions = 0;
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [&](int volume) {
        const QStringList lines = screen.lines.filter("Time point:");
        if (lines.size() == predictions) {
            EXPECT_EQ(answers(), silent) << volume;
            return;
        }
        // The class with the most votes of the pairs 1 and 2, 1 and 3, 2 and 3.
        const std::vector<QString> now = answers();
        const auto favours = [&now](int pair) { return now[size_t(pair)].toDouble() > 0.0; };
        const int votes[] = {favours(2) + favours(3), !favours(2) + favours(4),
                             !favours(3) + !favours(4)};
        EXPECT_EQ(votes[now[1].toInt() - 1], *std::ranges::max_element(votes)) << volume;
        EXPECT_TRUE(lines.last().endsWith("class:  " + now[1])) << volume;
        predictions = lines.size();
    };
    session.runButtonPressed();
    EXPECT_GT(predictions, 3);
    EXPECT_EQ(answers(), off);
    session.classifier.close();
}

TEST_F(PluginFunctions, PassOnWhatAPluginShows) {
    const ProbeFunctions& call = probe.functions();
    EXPECT_FALSE(call.registerMaps(1)) << "no program";
    EXPECT_EQ(call.getPluginMaps(), nullptr);
    call.showPluginMaps(true);
    call.updateMapList();
    call.setPluginMapsThreshold(1.0f);
    call.setPluginMapName(0, "M");
    call.setDisplayStatusOfMap(0, 1);

    beginProgram();
    const RegisteredPluginMaps& maps = session.requests.pluginMaps;
    EXPECT_FALSE(call.registerMaps(0));
    EXPECT_EQ(maps.count(), 0);
    EXPECT_TRUE(call.registerMaps(3));
    EXPECT_EQ(maps.count(), 3);
    call.setPluginMapName(1, "M\xc3\xbc");
    call.setPluginMapName(2, ("a\n\tb " + std::string(5000, 'x')).c_str());
    EXPECT_EQ(maps.name(2), "a b " + QString(96, 'x'));
    call.setDisplayStatusOfMap(2, 2);
    call.setPluginMapsThreshold(1.25f);
    call.showPluginMaps(true);
    EXPECT_EQ(maps.name(1), QString::fromUtf8("M\xc3\xbc"));
    EXPECT_EQ(maps.state(2), 2);
    EXPECT_EQ(maps.threshold, 1.25f);
    EXPECT_TRUE(maps.shown);
    ProbeDisplay& shown = display;
    shown.calls.clear();
    call.updateMapList();
    EXPECT_EQ(shown.calls, QStringList("views"));
    call.showPluginMaps(false);
    EXPECT_FALSE(maps.shown);

    EXPECT_EQ(call.getPluginMaps(), nullptr);
    session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
    PluginMapValues& values = session.functionalDocument->pluginMaps;
    EXPECT_EQ(call.getPluginMaps(), nullptr);
    EXPECT_TRUE(values.allocate(2, {8, 8, 4}));
    call.getPluginMaps()[256 + 9] = 4.0f;
    EXPECT_EQ(values.map(1)[9], 4.0f);
}

// Sums written out: the discrete Fourier transform, and products of counted-up matrices.
TEST_F(PluginFunctions, ComputeAsTheLibrariesDo) {
    const auto values = valuesOf(probe.ask("probeNumerics"));
    for (const QString type : {"F", "D"})
        for (int how = 0; how < 5; ++how) {
            const bool transposeA = how & 1, transposeB = how & 2, nothing = how == 4;
            const auto a = [&](int i, int l) { return transposeA ? l * 2 + i + 1 : i * 3 + l + 1; };
            const auto b = [&](int l, int j) { return transposeB ? j * 3 + l + 1 : l * 4 + j + 1; };
            for (int at = 0; at < 8; ++at) {
                int sum = 0;
                for (int l = 0; l < 3; ++l)
                    sum += a(at / 4, l) * b(l, at % 4);
                EXPECT_EQ(values.at("matrix" + type)[size_t(8 * how + at)], nothing ? -77 : sum)
                    << how << ' ' << at;
            }
            for (int at = 0; at < 3; ++at) {
                int sum = 0;
                for (int l = 0; l < (transposeA ? 2 : 3); ++l)
                    sum += (transposeA ? l * 3 + at + 1 : at * 3 + l + 1) * (l + 1);
                const bool written = !nothing && (transposeA || at < 2);
                EXPECT_EQ(values.at("vector" + type)[size_t(3 * how + at)], written ? sum : -77);
            }
        }
    const std::vector<double>& spectrum = values.at("spectrum");
    for (int k = 0; k < 2 * 3 * 3; ++k) {
        std::complex<double> sum = 0.0;
        for (int i = 0; i < 24; ++i) {
            const double turns = double(k / 9 * (i / 12)) / 2 +
                                 double(k / 3 % 3 * (i / 4 % 3)) / 3 + double(k % 3 * (i % 4)) / 4;
            sum += double(i * i % 11) * std::polar(1.0, -2.0 * std::numbers::pi * turns);
        }
        EXPECT_NEAR(spectrum[size_t(2 * k)], sum.real(), 1e-4) << k;
        EXPECT_NEAR(spectrum[size_t(2 * k + 1)], sum.imag(), 1e-4) << k;
    }
    for (int i = 0; i < 24; ++i)
        EXPECT_NEAR(values.at("back")[size_t(i)], 24 * (i * i % 11), 1e-3) << i;
}
