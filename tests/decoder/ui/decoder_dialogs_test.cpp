// The dialogs of the letter decoder, driven by their controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/empirical_responses_dialog.h"
#include "decoder_fixture.h"
#include "display/plots/plotter.h"
#include "support/dialog_checks.h"

#include <QDoubleSpinBox>
#include <QPlainTextEdit>

namespace {

/// Labels, titles and texts of buttons, without the marks of their keys.
QStringList textsOf(const QWidget& dialog) {
    QStringList texts;
    for (const QWidget* widget : dialog.findChildren<QWidget*>())
        for (const char* property : {"text", "title"})
            texts << widget->property(property).toString().remove('&');
    return texts;
}

} // namespace

class DecoderDialogs : public DecoderFixture {
protected:
    BOLDDecodingSettingsDlg& openSettings() {
        trigger("SettingsAction");
        return *decoding->findChild<BOLDDecodingSettingsDlg*>();
    }
    CreateEmpiricalResponsesDlg& openResponses() {
        return *decoding->findChild<CreateEmpiricalResponsesDlg*>();
    }
    /// The first response that the dialog makes.
    std::vector<float> made() {
        QFile::remove(path("made.rtc"));
        click("OkBtn");
        const auto responses = loadReferences(path("made.rtc"));
        return responses ? responses->front() : std::vector<float>();
    }
    void set(const char* name, int value) { find<QSpinBox>(name).setValue(value); }
    /// Clicks a button that asks for a file.
    void choose(const char* button, const char* title, const QString& file,
                const QString& warning = {}) {
        messages.expectFileChoice(title, file);
        if (!warning.isEmpty())
            messages.expectWarning(warning);
        click(button);
    }
    [[nodiscard]] const DecoderSettings& applied() { return session.decoder.decoder().settings(); }
    /// Rest and nine tasks, one trial each: the onset of the first, volumes from each to the next.
    static QString tenConditions(int first, int step) {
        QString protocol =
            defaultProtocol().section("NrOfConditions:", 0, 0) + "NrOfConditions: 10\n";
        for (int i = 0; i < 10; ++i)
            protocol += QString("C%1\n1\n%2 %2\nColor: 9 9 9\n").arg(i).arg(first + step * i);
        return protocol;
    }
    [[nodiscard]] QTableWidgetItem& weight(int task, int roi) {
        return *find<QTableWidget>("TaskVOIWeightsTable").item(task, roi);
    }
};

TEST_F(DecoderDialogs, NameTheSettings) {
    const BOLDDecodingSettingsDlg& dialog = openSettings();
    expectExplained(dialog);
    EXPECT_EQ(dialog.windowTitle(), "Decoding Preparation");
    for (const char* text :
         {"Skip time points at begin of run:",
          "'Begin of run' starts after 'skipped volumes'",
          "Full window size:",
          "Ideal response window size:",
          "Skip at begin:",
          "Points until start of (ideal) hemodynamic response",
          "Skip at end:",
          "If negative, hemo response is expected to extend into next data window",
          "Mean for percent signal change   From:",
          "Number of VOIs:",
          "Number of expected time points:",
          "Timer interval:",
          "Role of helper VOIs (e.g. SMAs) for finding response shape via correlation",
          "Use 3 task VOIs and 3 task-specific SMA ROIs (6 ROIs)",
          "Use only SMA VOIs (3 ROIs)",
          "Use only task VOIs (3 ROIs)",
          "Letter assignment option",
          "Version 1 (used for default visual decoding)",
          "Version 2 (used for default auditory decoding)",
          "Weight (0.0 corr only, 1.0 beta only, 0.5 both contribute equally):"})
        EXPECT_TRUE(textsOf(dialog).contains(text)) << text;
    EXPECT_EQ(find<QLineEdit>("IdealResponsesRTCFileEd").text(), "IdealResponses_rg.rtc");
    EXPECT_FALSE(find<QAbstractButton>("LetterAssignment2Op").isEnabled());
}

TEST_F(DecoderDialogs, HandOverWhatIsSet) {
    openSettings();
    DecoderSettings expected;
    const std::tuple<const char*, int&, int> numbers[] = {
        {"NrOfVOIsSpBx", expected.NrOfDataROIs, 5},
        {"NrOfTimePointsSpBx", expected.NrOfTimePoints, 200},
        {"TimerIntervalSpBx", expected.TimerInterval, 50},
        {"SkipTimePointsAtBeginSpBx", expected.SkipTimePointsAtBegin, 4},
        {"FullWindowSizeSpBx", expected.FullWindowSize, 45},
        {"IdealResponseWindowSizeSpBx", expected.IdealResponseWindowSize, 38},
        {"SkipAtBeginSpBx", expected.SkipAtBeginOfWindow, 2},
        {"SkipAtEndSpBx", expected.SkipAtEndOfWindow, -3},
        {"MeanForPercSignalFromSpBx", expected.MeanForPercSignalFrom, 1},
        {"MeanForPercSignalToSpBx", expected.MeanForPercSignalTo, 5}};
    for (const auto& [name, field, value] : numbers) {
        set(name, value);
        field = value;
    }
    find<QDoubleSpinBox>("CorrBetaTauDSpBx").setValue(0.25);
    expected.CorrBetaTau = 0.25f;
    click("UseOnlySMAVOIsOp");
    expected.HelperVOIsMode = HelperVOIs::OnlyHelpers;
    weight(1, 1).setText("3");
    weight(1, 4).setText("-4");
    expected.TaskVOIWeights = scaledWeights({{{1, 0, 0, 1}, {0, 3, 0, 0, -4}, {0, 0, 1, 0, 0, 1}}});
    set("NrOfExtraLinesSpBx", 2);
    set("ExtraLineNrSpBx", 2);
    find<QDoubleSpinBox>("ExtraLineAtPointDSpBx").setValue(7.5);
    expected.extraLines = {0.0f, 7.5f};
    EXPECT_TRUE(writeReferences(idealResponses(38, TR), path("own.rtc")));
    find<QLineEdit>("IdealResponsesRTCFileEd").setText(path("own.rtc"));
    click("OkBtn");
    EXPECT_EQ(applied(), expected);
    EXPECT_EQ(find<Plotter>("ReferencePlot1").content().lines.size(), 2u);
    EXPECT_EQ(session.decoder.preparation().referencesPath, path("own.rtc"));
    // The dialog shows them again, and Cancel keeps them.
    openSettings();
    EXPECT_EQ(find<QSpinBox>("NrOfTimePointsSpBx").value(), // again that of the run
              session.settings.NrOfVolumes - session.settings.NrOfVolumesToSkip);
    set("NrOfTimePointsSpBx", 200);
    click("OkBtn");
    EXPECT_EQ(applied(), expected);
    openSettings();
    EXPECT_EQ(weight(1, 4).text(), "-4");
    EXPECT_EQ(find<QSpinBox>("ExtraLineNrSpBx").maximum(), 2);
    click("UseOnlyTaskVOIsOp");
    click("CancelBtn");
    EXPECT_EQ(applied(), expected);
}

TEST_F(DecoderDialogs, RefuseWhatDoesNotFit) {
    const BOLDDecodingSettingsDlg& dialog = openSettings();
    set("MeanForPercSignalToSpBx", 40);
    messages.expectWarning("The mean for percent signal change must lie*");
    click("OkBtn");
    set("MeanForPercSignalToSpBx", 2);
    set("SkipAtBeginSpBx", 43);
    for (const char* button : {"OkBtn", "SaveDefaultSettingsBtn"}) {
        messages.expectWarning("The skips leave no point*");
        click(button);
    }
    set("SkipAtBeginSpBx", 3);
    weight(0, 0).setText("1 0");
    weight(0, 1).setText("");
    for (const char* button : {"OkBtn", "SaveWeightsBtn"}) {
        messages.expectWarning("The weight of VOI Task 1 for task 1 must be a number*");
        click(button);
    }
    weight(0, 0).setText("1");
    weight(0, 1).setText("0");
    click("OfflineAnalysisOp");
    find<QLineEdit>("OfflineRTCFileEd").setText(path("none.rtc"));
    messages.expectInformation("INFO - Problem loading RTC file with VOI time courses!\n*");
    click("OkBtn");
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(DecoderDialogs, KeepWeightsAndSettingsInFiles) {
    openSettings();
    weight(2, 5).setText("0.25");
    set("FullWindowSizeSpBx", 60);
    set("NrOfTimePointsSpBx", 99);
    click("UseOnlyTaskVOIsOp");
    const QString unwritable = "ERROR: Can not open output file \"%1\" for writing.";
    for (const auto& [button, title, file] :
         {std::tuple("SaveWeightsBtn",
                     "Select file for storing VOI weighting pattern for each task", "a.wgt"),
          {"SaveDefaultSettingsBtn", "Save BDS File", "a.bds"}}) {
        choose(button, title, path(file));
        choose(button, title, path("none/") + file, unwritable.arg(path("none/") + file));
    }
    weight(2, 5).setText("9");
    set("FullWindowSizeSpBx", 50);
    set("NrOfTimePointsSpBx", 88);
    click("UseOnlySMAVOIsOp");
    put("bad", "Version: 2");
    for (const auto& [button, title, file] :
         {std::tuple("LoadWeightsBtn", "Select file containing VOI weighting pattern for each task",
                     "a.wgt"),
          {"LoadDefaultSettingsBtn", "Load BDS File", "a.bds"}}) {
        choose(button, title, path("none"),
               "ERROR: Can not open file \"" + path("none") + "\" for writing.");
        choose(button, title, path("bad"), "The file \"" + path("bad") + "\" does not hold*");
        choose(button, title, path(file));
    }
    EXPECT_EQ(weight(2, 5).text(), "0.25");
    EXPECT_EQ(find<QSpinBox>("FullWindowSizeSpBx").value(), 60);
    EXPECT_EQ(find<QSpinBox>("NrOfTimePointsSpBx").value(), 88); // not in the file
    EXPECT_TRUE(find<QAbstractButton>("UseOnlyTaskVOIsOp").isChecked());
    // All digits of a file, which the box doesn't show.
    put("a.bds", content("a.bds").replace("Tau:             0.5", "Tau:             0.333"));
    choose("LoadDefaultSettingsBtn", "Load BDS File", path("a.bds"));
    click("OkBtn");
    EXPECT_EQ(applied().CorrBetaTau, 0.333f);
}

TEST_F(DecoderDialogs, ChooseReferencesAndData) {
    session.decoder.setSampleFolder(path("sample"));
    openSettings();
    auto& file = find<QLineEdit>("OfflineRTCFileEd");
    const auto numbers = [this] {
        return CurvesSize{find<QSpinBox>("NrOfVOIsSpBx").value(),
                          find<QSpinBox>("NrOfTimePointsSpBx").value()};
    };
    EXPECT_EQ(file.text(), path("sample/SampleMessage.rtc"));
    EXPECT_FALSE(file.isEnabled() || find<QWidget>("TimerIntervalSpBx").isEnabled());
    const CurvesSize ofRun{5, numbers().nrOfTimePoints};
    set("NrOfVOIsSpBx", 5);
    click("OfflineAnalysisOp");
    EXPECT_EQ(numbers(), (CurvesSize{6, 465}));
    EXPECT_TRUE(file.isEnabled() && find<QWidget>("TimerIntervalSpBx").isEnabled());
    choose("SelectOfflineRTCFileBtn", "Select RTC file with 3 or 4 VOI time courses",
           path("word.rtc"));
    EXPECT_EQ(file.text(), path("word.rtc"));
    EXPECT_EQ(numbers(), (CurvesSize{6, 170}));
    // Leaving the field takes the numbers of another file, and keeps what was typed for this one.
    set("NrOfTimePointsSpBx", 100);
    Q_EMIT file.editingFinished();
    EXPECT_EQ(numbers(), (CurvesSize{6, 100}));
    file.setText(path("sample/SampleMessage.rtc"));
    Q_EMIT file.editingFinished();
    EXPECT_EQ(numbers(), (CurvesSize{6, 465}));
    click("RealTimeAnalysisOp");
    EXPECT_EQ(numbers(), ofRun);
    EXPECT_FALSE(file.isEnabled());
    choose("SelectIdealResponsesRTCFileBtn", "Select RTC file with 9 ideal responses", "/r.rtc");
    EXPECT_EQ(find<QLineEdit>("IdealResponsesRTCFileEd").text(), "/r.rtc");
}

TEST_F(DecoderDialogs, MakeResponsesFromFiles) {
    put("EmpiricalResponses.rtc", "of an earlier run");
    trigger("EmpiricalFromRTCAction");
    CreateEmpiricalResponsesDlg& dialog = openResponses();
    expectExplained(dialog);
    EXPECT_EQ(dialog.windowTitle(), "Create Empirical Responses");
    for (const char* text :
         {"Window time points:", "Pre-trial points:", "Post-trial points:",
          "Shortest task duration:", "Use ROIs optimized for disentangling mental tasks (1-3)",
          "Use ROIs optimized for temporal BOLD characteristics (4-6)", "Use all six ROIs (1-6)",
          "RTC file:", "Data RTC file:", "Protocol file:"})
        EXPECT_TRUE(textsOf(dialog).contains(text)) << text;
    for (const auto& [name, value] : {std::pair("WindowTimePointsSpBx", 40),
                                      {"PreTrialBeginDataPointsSpBx", 5},
                                      {"PostTrialDataPointsSpBx", 10},
                                      {"ShortestTaskDurationSpBx", 15}})
        EXPECT_EQ(find<QSpinBox>(name).value(), value) << name;
    EXPECT_EQ(find<QLineEdit>("IdealResponsesFileEd").text(), path("EmpiricalResponses-2.rtc"));
    messages.expectWarning("Choose all files of this dialog first.");
    click("OkBtn");
    put("training.prt", tenConditions(6, 12).toLatin1());
    choose("SelectDataRTCFileBtn", "Select RTC file with VOI time courses", path("word.rtc"));
    EXPECT_EQ(find<QLineEdit>("ProtocolFileEd").text(), path("training.prt")) << "the only one";
    choose("SelectIdealResponsesFileBtn", "Select RTC file for the empirical responses",
           path("made.rtc"));
    choose("SelectProtocolFileBtn", "Select protocol file", path("training.prt"));
    // The helpers respond half as much as the regions of the tasks.
    std::vector<double> rises;
    for (const char* button :
         {"UseThreeTaskROIsForIdealResponsesOp", "UseOnlySMAROIsForIdealResponsesOp",
          "IncludeSMAsForIdealResponsesBtn"}) {
        click(button);
        const std::vector<float> response = made();
        ASSERT_EQ(response.size(), 40u) << button;
        rises.push_back(double(std::ranges::max(response)) - 100.0);
        dialog.show();
    }
    EXPECT_GT(rises[1], 0.01);
    EXPECT_NEAR(rises[1], 0.5 * rises[0], 0.005);
    EXPECT_NEAR(rises[2], 0.75 * rises[0], 0.005);
    EXPECT_TRUE(find<QPlainTextEdit>("LogEd").toPlainText().endsWith(path("made.rtc") + '"'));
    // The shortest response ends 9 + 4 points behind the onset.
    set("WindowTimePointsSpBx", 30);
    set("ShortestTaskDurationSpBx", 9);
    set("PreTrialBeginDataPointsSpBx", 2);
    set("PostTrialDataPointsSpBx", 4);
    const std::vector<float> response = made();
    ASSERT_EQ(response.size(), 30u);
    EXPECT_NE(response[12], 100.0f);
    EXPECT_TRUE(std::all_of(response.begin() + 13, response.end(),
                            [](float value) { return value == 100.0f; }));
}

TEST_F(DecoderDialogs, MakeResponsesOnlyOfARunWithRegions) {
    decoding->createEmpiricalIdealResponsesFileFromVCO();
    EXPECT_FALSE(find<QLineEdit>("DataRTCFileEd").isVisible());
    EXPECT_FALSE(find<QLineEdit>("ProtocolFileEd").isVisible());
    find<QLineEdit>("IdealResponsesFileEd").setText(path("made.rtc"));
    messages.expectInformation("There is no run in memory.");
    click("OkBtn");
    EXPECT_TRUE(openResponses().isVisible());
    session.settings.TargetFolder.clear();
    EXPECT_EQ(session.decoder.proposedResponsesPath("/none/a.rtc"), "/none/EmpiricalResponses.rtc");
    writeSession(32, 0, {}, tenConditions(2, 3));
    session.runButtonPressed();
    messages.expectWarning("WARNING - Can not create reference file: not enough ROIs.");
    click("OkBtn");
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(session.regions.selectRectangle({i % 4, i, i + 2, i, i + 2}));
    EXPECT_EQ(made().size(), 40u);
    EXPECT_FALSE(openResponses().isVisible());
}
