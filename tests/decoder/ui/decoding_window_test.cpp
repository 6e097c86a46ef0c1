// The window of the letter decoder, operated by the names of its actions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/letter_matrix.h"
#include "decoder/ui/reference_plot.h"
#include "decoder_fixture.h"

#include <QCheckBox>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTest>

class DecodingWindow : public DecoderFixture {
protected:
    [[nodiscard]] QString state() { return find<QStatusBar>("StatusBar").currentMessage(); }
};

namespace {

/// The middle of the upper edge of a letter's cell, where nothing but its filling is.
QColor fillingOf(LetterMatrix& matrix, QChar letter) {
    const QRectF cell = matrix.cell(*codeOf(letter));
    return matrix.grab().toImage().pixelColor(int(cell.left() + 8), int(cell.top() + 4));
}

/// Nothing is written in the cell.
bool isBlank(LetterMatrix& matrix, QChar letter) {
    const QImage cell =
        matrix.grab(matrix.cell(*codeOf(letter)).adjusted(8, 8, -8, -8).toRect()).toImage();
    QImage plain = cell;
    plain.fill(cell.pixelColor(0, 0));
    return cell == plain;
}

QString legends(const Plotter& plot) {
    QStringList names;
    for (const PlotCurve& curve : plot.content().curves)
        names << curve.legend;
    return names.join(',');
}

} // namespace

TEST_F(DecodingWindow, HasTheTextsOfItsActions) {
    EXPECT_EQ(decoding->windowTitle(), "Decoding Of BOLD Letters");
    EXPECT_EQ(decoding->windowType(), Qt::Dialog); // messages don't raise the main window over it
    QStringList texts;
    for (const QAction* action : decoding->findChildren<QAction*>())
        texts << action->text();
    for (const char* text : {"Run With Timer", "Next Letter", "Previous Letter", "Reload ROI Data",
                             "Manage Data Curves", "ABCD Mode", "Corr for Shape and Task Selection",
                             "Corr For Shape, Beta For Task"})
        EXPECT_TRUE(texts.contains(text)) << text;
    EXPECT_EQ(find<QWidget>("DecodedTextGrpBx").property("title"), "Decoded Text");
    EXPECT_TRUE(decoding->minimumSizeHint().width() <= 1016 &&
                decoding->minimumSizeHint().height() <= 700);
}

TEST_F(DecodingWindow, NothingIsPossibleBeforeThePreparation) {
    Q_EMIT find<QMenu>("PreparationMenu").aboutToShow();
    const QString unprepared = "The decoding is not prepared";
    for (const auto& [name, hindrance] :
         {std::pair("NextLetterAction", unprepared),
          {"PreviousLetterAction", unprepared},
          {"ProcessLetterAction", unprepared},
          {"ReloadROIDataAction", "Only time courses of a file are reloaded"},
          {"EmpiricalFromVCOAction", "There is no run in memory"}}) {
        EXPECT_FALSE(find<QAction>(name).isEnabled()) << name;
        EXPECT_EQ(find<QAction>(name).toolTip(), hindrance);
    }
    EXPECT_TRUE(find<QAction>("RunWithTimerAction").toolTip().startsWith("Offline: decode"));
    QStatusTipEvent ofMenu{QString()}; // as the mouse on a menu sends it
    QApplication::sendEvent(decoding, &ofMenu);
    EXPECT_TRUE(state().startsWith("The decoding is not prepared"));
    EXPECT_FALSE(find<Plotter>("DataPlotter").content().note.isEmpty());
}

TEST_F(DecodingWindow, TheTimerPlaysTheSampleAsLongAsNothingIsPrepared) {
    session.decoder.setSampleFolder(path("sample"));
    EXPECT_TRUE(state().contains("sample message"));
    const auto& timer = find<QAction>("RunWithTimerAction");
    trigger("RunWithTimerAction");
    EXPECT_TRUE(timer.isChecked());
    EXPECT_TRUE(state().endsWith("sample message " + path("sample/SampleMessage.rtc")));
    trigger("RunWithTimerAction");
    EXPECT_FALSE(timer.isChecked());
    trigger("NextLetterAction");
    EXPECT_EQ(decoded()[0], "H");
}

TEST_F(DecodingWindow, GoesFromLetterToLetter) {
    prepareOffline();
    auto& best = find<QLineEdit>("DecodedText1Ed");
    decoding->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(decoding));
    best.setFocus();
    auto& log = find<QPlainTextEdit>("LogEd");
    for (int i = 0; i < 4; ++i) {
        log.verticalScrollBar()->setValue(0);
        QTest::keyClick(&best, Qt::Key_F6);
    }
    EXPECT_EQ(decoded()[0], "VELO");
    EXPECT_EQ(decoded()[1].size(), 4);
    EXPECT_TRUE(log.toPlainText().contains("\nRank 1: O ("));
    EXPECT_EQ(log.verticalScrollBar()->value(), log.verticalScrollBar()->maximum());
    auto& matrix = find<LetterMatrix>("LetterDisplay");
    EXPECT_EQ(fillingOf(matrix, 'O'), QColor(255, 20, 50));
    EXPECT_EQ(fillingOf(matrix, decoded()[1].back()), QColor(50, 200, 50));
    EXPECT_EQ(fillingOf(matrix, decoded()[2].back()), QColor(0, 200, 255));
    trigger("PreviousLetterAction");
    EXPECT_EQ(decoded()[0], "VEL");
    trigger("ProcessLetterAction");
    EXPECT_EQ(decoded()[0], "VELL");
    EXPECT_TRUE(QFile::exists(path("feedback/BOLDDecoder-word-3.png")));
    trigger("ReloadROIDataAction");
    EXPECT_EQ(decoded(), QStringList({"", "", ""}));
    EXPECT_EQ(fillingOf(matrix, 'L'), fillingOf(matrix, 'Z'));
}

TEST_F(DecodingWindow, TheReferencePlotsShowTheScoresInTheColoursOfTheRanks) {
    prepareOffline();
    trigger("NextLetterAction"); // "V": the third task, onset 10 s, duration 20 s
    const auto& best = find<ReferencePlot>("ReferencePlot5");
    EXPECT_EQ(best.content().title, "20-20");
    ASSERT_TRUE(best.marks());
    const TaskMark found = best.marks()->at(2);
    EXPECT_EQ(found, (TaskMark{QColor(255, 20, 50), found.score, found.product, true}));
    EXPECT_EQ(best.marks()->at(0).color, QColor(200, 200, 200));
    // Of the correlation, which is 1, and the normalized betas of the task's region and its helper,
    // 1 / sqrt(1.25) and half of it, both weighted with 1 / sqrt(2).
    EXPECT_EQ(found.score, "0.97");
    EXPECT_EQ(found.product, "0.95");
    trigger("OnlyCorrAction");
    EXPECT_FALSE(session.decoder.decoder().settings().UseBeta);
    EXPECT_EQ(find<QAction>("ABCDModeAction").toolTip(), "Four letters need both scores");
    trigger("ProcessLetterAction");
    EXPECT_EQ(best.marks()->at(2).product, "");
    EXPECT_EQ(best.marks()->at(2).score, "1.41"); // two correlations of 1
    trigger("CorrAndBetaAction");
    EXPECT_TRUE(session.decoder.decoder().settings().UseBeta);
    float curve[] = {1, 4, 7, 16}, reference[] = {0, 1, 2, 5}, slope = 0.0f;
    decoding->fitGLMForLetter(4, curve, reference, slope);
    EXPECT_FLOAT_EQ(slope, 3.0f);
}

TEST_F(DecodingWindow, TheFourLetterModeFindsFourLetters) {
    prepareOffline();
    trigger("ABCDModeAction");
    for (int i = 0; i < 2; ++i)
        trigger("NextLetterAction");
    EXPECT_EQ(decoded()[0].back(), 'C'); // "E"
    auto& matrix = find<LetterMatrix>("LetterDisplay");
    EXPECT_TRUE(isBlank(matrix, 'I') && isBlank(matrix, 'Z'));
    EXPECT_FALSE(isBlank(matrix, 'A') || isBlank(matrix, 'Y'));
    EXPECT_FALSE(find<ReferencePlot>("ReferencePlot1").marks()->at(1).isBest)
        << "the second task has no letter";
    trigger("ABCDModeAction");
    EXPECT_FALSE(session.decoder.decoder().settings().ABCDMode);
}

TEST_F(DecodingWindow, TheTimerTakesTheVolumesOfTheFile) {
    prepareOffline();
    decoding->runWithTimer();
    EXPECT_TRUE(find<QAction>("RunWithTimerAction").isChecked());
    EXPECT_EQ(find<QAction>("NextLetterAction").toolTip(), "Not while the timer runs");
    auto* timer = decoding->findChild<QTimer*>();
    EXPECT_EQ(timer->interval(), 200);
    EXPECT_TRUE(timer->isActive());
    decoding->nextTR();
    auto& matrix = find<LetterMatrix>("LetterDisplay");
    EXPECT_EQ(matrix.stage(), -1) << "the cue";
    for (int volume = 1; volume < 12; ++volume)
        decoding->nextTR();
    EXPECT_EQ(matrix.stage(), 1);
    EXPECT_EQ(state(), "No letter yet  ·  volume 12 of 170  ·  word.rtc");
    for (int volume = 12; volume <= nrOfVolumes(); ++volume)
        decoding->nextTR();
    EXPECT_EQ(decoded()[0], "VELO");
    EXPECT_FALSE(timer->isActive());
    const auto& action = find<QAction>("RunWithTimerAction");
    EXPECT_FALSE(action.isChecked() || action.isEnabled());
    EXPECT_EQ(action.toolTip(), "All volumes of the file have been taken");
    EXPECT_EQ(find<QAction>("NextLetterAction").toolTip(), "Decode the next letter");
    EXPECT_TRUE(state().contains("begins anew"));
}

TEST_F(DecodingWindow, ChoosesTheCurvesOfTheDataPlot) {
    prepareOffline();
    const auto& plot = find<Plotter>("DataPlotter");
    for (const auto& [action, expected] :
         {std::pair("TaskCurvesAction", "VOI Task 1,VOI Task 2,VOI Task 3"),
          {"SMACurvesAction", "SMA 1,SMA 2,SMA 3"},
          {"TaskAndSMA1Action", "VOI Task 1,SMA 1"},
          {"TaskAndSMA2Action", "VOI Task 2,SMA 2"},
          {"TaskAndSMA3Action", "VOI Task 3,SMA 3"},
          {"AllCurvesAction", "VOI Task 1,VOI Task 2,VOI Task 3,SMA 1,SMA 2,SMA 3"}}) {
        trigger(action);
        EXPECT_EQ(legends(plot), expected);
    }
    EXPECT_EQ(plot.content().curves[0].values.size(), size_t(nrOfVolumes()));
    trigger("ManageDataCurvesAction");
    EXPECT_TRUE(find<QCheckBox>("DataCurve2Op").isVisible());
    click("DataCurve2Op");
    trigger("NextLetterAction");
    EXPECT_EQ(plot.content().title, "Window of letter 1");
    EXPECT_EQ(legends(plot), "VOI Task 1,VOI Task 3,SMA 1,SMA 2,SMA 3");
    trigger("ManageDataCurvesAction");
    EXPECT_FALSE(find<QCheckBox>("DataCurve2Op").isVisible());

    DecoderPreparation ofThree = session.decoder.preparation();
    ofThree.settings.NrOfDataROIs = 3;
    ASSERT_TRUE(session.decoder.prepare(ofThree));
    trigger("AllCurvesAction");
    EXPECT_EQ(legends(plot), "VOI Task 1,VOI Task 2,VOI Task 3") << "others are missing";
}

TEST_F(DecodingWindow, TheDecoderWorksWhileTheWindowIsShown) {
    EXPECT_TRUE(session.decoder.isOpen());
    prepareOffline();
    decoding->runWithTimer();
    trigger("SettingsAction");
    decoding->close();
    EXPECT_FALSE(decoding->findChild<QTimer*>()->isActive());
    EXPECT_FALSE(session.decoder.isOpen());
    EXPECT_FALSE(decoding->findChild<BOLDDecodingSettingsDlg*>()->isVisible());
    openBOLDDecoder(session, window);
    EXPECT_EQ(window.findChildren<BOLDDecodingMW*>().size(), 1);
    EXPECT_TRUE(session.decoder.isOpen());
    delete decoding;
    EXPECT_FALSE(session.decoder.isOpen());
}
