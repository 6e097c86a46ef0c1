// The main window while a run goes on and after it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/main_window.h"

#include "dialogs/progress_boxes.h"
#include "run/journal/journal_writer.h"
#include "run/replay/journal_records.h"
#include "run/window/message_boxes.h"
#include "support/files.h"
#include "volume/ui/postprocessing_dialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTextBrowser>
#include <QTimer>

TEST_F(MainWindow, NothingOfTheWindowHoldsUpARun) {
    prepare(1, Phase::Recording);
    MessageBoxes boxes;
    installMessageHandler(&boxes);
    document().project.NrOfVolumes = 1;
    ASSERT_TRUE(document().project.allocateVolumes());
    window_->session().report.currentVolume = 0;
    // Each of these has an event loop of its own unless it is told otherwise.
    window_->slotLoadROIs();
    const auto* regions = window_->findChild<QFileDialog*>();
    ASSERT_NE(regions, nullptr);
    EXPECT_TRUE(regions->isVisible());
    click(0, ContrastList::Color);
    const QColorDialog* chooser = nullptr;
    for (const QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* dialog = qobject_cast<const QColorDialog*>(widget))
            chooser = dialog;
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->windowTitle(), "Color of contrast 0");
    window_->slotShowAboutDlg();
    window_->slotShowLicenseInfoDlg();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    const auto* box = &control<QSpinBox>("ClusterSizeSpBx");
    QContextMenuEvent menu(QContextMenuEvent::Mouse, {3, 3}, box->mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(box->findChild<QLineEdit*>(), &menu);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    window_->session().listeners.documentsLeaving();
    EXPECT_FALSE(chooser->isVisible()) << "its contrast has gone";
    EXPECT_FALSE(regions->isVisible()) << "so has the run of the regions";
    installMessageHandler(&messages_);
    runOver();
}

TEST_F(MainWindow, ContrastColumnsToggleSignsOfAtMostFour) {
    prepare(5, Phase::Recording);
    const std::vector<int>& states = document().contrasts.ContrastSelectionStates;
    auto& conjunction = control<QCheckBox>("ConjunctionOfContrastsOp");
    click(0, ContrastList::Positive);
    conjunction.click();
    EXPECT_FALSE(conjunction.isChecked() || document().contrasts.ConjunctionAnalysis) << "of one";
    click(0, ContrastList::Negative);
    EXPECT_EQ(states[0], ContrastBoth);
    click(0, ContrastList::Positive);
    EXPECT_EQ(states[0], ContrastNegative);
    click(0, ContrastList::Name);
    QTest::keyClick(&control("ContrastList"), Qt::Key_Plus);
    QTest::keyClick(&control("ContrastList"), Qt::Key_Plus);
    EXPECT_EQ(states[0], ContrastNegative);
    for (int row = 1; row < 5; ++row)
        click(row, ContrastList::Positive);
    EXPECT_EQ(states, (std::vector<int>{2, 1, 1, 1, 0}));
    conjunction.click();
    EXPECT_TRUE(conjunction.isChecked() && document().contrasts.ConjunctionAnalysis);
}

TEST_F(MainWindow, PanelsFitBothSizes) {
    prepare(3);
    for (const QSize size : {QSize(1280, 1024), QSize(1024, 768)}) {
        QCoreApplication::processEvents();
        EXPECT_EQ(window_->size(), size);
        EXPECT_EQ(control<QTextBrowser>("LogInfos").document()->documentMargin(),
                  size.width() == 1024 ? 0 : 6);
        for (const QWidget* widget : window_->findChildren<QWidget*>()) {
            if (!widget->isVisibleTo(window_.get()) || widget->isWindow())
                continue;
            const QWidget* parent = widget->parentWidget();
            if (qobject_cast<const QAbstractScrollArea*>(parent->parentWidget()))
                continue; // the content of a list scrolls
            EXPECT_TRUE(parent->rect().contains(widget->geometry()))
                << widget->objectName().toStdString() << " leaves its panel";
        }
        window_->slotSwitchWindowSize();
    }
}

TEST_F(MainWindow, ButtonsFollowWhatTheLookAtTheSettingsFileFinds) {
    const std::pair<const char*, bool InputControls::*> buttons[] = {
        {"ToBeginBtn", &InputControls::previousExists},
        {"ToEndBtn", &InputControls::nextExists},
        {"ReloadDataBtn", &InputControls::reloadPossible},
        {"AutoAdvanceRunBtn", &InputControls::preLoadPossible},
        {"AutoStartRunBtn", &InputControls::preLoadPossible}};
    for (const auto& [name, member] : buttons) {
        InputControls controls{.preLoadPossible = false, .preLoadedRegions = {}};
        window_->showInputControls(controls);
        EXPECT_FALSE(control(name).isEnabled()) << name;
        controls.*member = true;
        window_->showInputControls(controls);
        EXPECT_TRUE(control(name).isEnabled()) << name;
    }
    window_->showInputControls({.autoAdvanceRun = true, .preLoadedRegions = "/rois/a&b.roi"});
    EXPECT_TRUE(control<QPushButton>("AutoAdvanceRunBtn").isChecked());
    EXPECT_TRUE(control("AutoAdvanceRunBtn").toolTip().contains("/rois/a&amp;b.roi"));
}

TEST_F(MainWindow, MenusFollowThePhase) {
    const QString logs =
        "Select Only Voxels Of Plug-In Maps|Log ROI Time Point Files (RTPs)|Log ROI Time "
        "Courses (ERT)|Log ROI Betas (BTC)";
    const QString overlay = "Overlay On First Func Volume*|Overlay On Current Func Volume|";
    const QString views =
        "Current Func Volume Before Preprocessing|Show ROIs With Rectangles|Show ROIs With "
        "Highlighted Voxels|"
        "Show ROIs With Rectangles And Highlighted Voxels*|Show ROI Time Courses Container|";
    const QString lastViews = "Display Detrended ROI Time Courses|Show Motion Plot|Show Response "
                              "Plot|Switch Window Size";
    const QString training = "SVM Training...|RFE Training...|Real-Time SVM Classification...|";
    const auto expectMenus = [this](const QString& file, const QString& analysis,
                                    const QString& view) {
        EXPECT_EQ(enabledEntries("&File").join('|').toStdString(), file.toStdString());
        EXPECT_EQ(enabledEntries("&Analysis").join('|').toStdString(), analysis.toStdString());
        EXPECT_EQ(enabledEntries("&View").join('|').toStdString(), view.toStdString());
    };
    expectMenus("Set New VCO File...|Load Anatomy...|Recover Run...|Replay Run...|Close|Exit",
                "Epoch-Based Averaging*|" + training + "Neurofeedback... |BOLD Decoder... |" + logs,
                overlay + views + lastViews);
    prepare(1, Phase::Recording);
    expectMenus("Save View As BMP...|Close|Exit",
                "Colors Code Significance|Colors Code Contrasts*|Epoch-Based Averaging*|" +
                    training + "Neurofeedback... |BOLD Decoder... |" + logs,
                "Multi-Slice View|" + overlay + views + lastViews);
    document().project.NrOfVolumes = 3;
    ASSERT_TRUE(document().project.allocateVolumes());
    window_->session().report.currentVolume = 2;
    document().regions.add({});
    window_->slotSwitchToSignificanceColorCoding();
    window_->slotSaveROITimeCourses();
    window_->onToggleSelectOnlyMapVoxels();
    window_->slotSwitchAveragingType();
    window_->onToggleROITimeCoursesDetrended();
    window_->nextROIDisplayStyle();
    requests().pendingOverlayInplane = 0;
    window_->slotShowOnCurrentEPIs();
    window_->slotToggleBeforePreprocessing();
    runOver();
    expectMenus("Set New VCO File...|Load Anatomy...|Export As NIfTI...|Recover Run...|Replay "
                "Run...|Save View As "
                "BMP...|Close|Exit",
                "Colors Code Significance*|Colors Code Contrasts|Epoch-Based "
                "Averaging|" +
                    training +
                    "Post-Processing...|Neurofeedback... |BOLD Decoder... |Load ROIs...|Save "
                    "ROIs...|Load VOIs...|Save VOIs...|Select "
                    "Only Voxels Of Plug-In Maps*|Log ROI Time Point Files "
                    "(RTPs)|Log ROI Time Courses (ERT)*|Log ROI Betas (BTC)",
                "Multi-Slice View|Overlay On First Func Volume|Overlay On Current Func "
                "Volume*|Overlay On Inplanes|Current Func Volume Before Preprocessing*|Show ROIs "
                "With Rectangles|Show ROIs With Highlighted "
                "Voxels*|Show ROIs With Rectangles And Highlighted Voxels|Show ROI Time Courses "
                "Container|Remove ROI Time Course Plots|Display Detrended ROI Time "
                "Courses*|Show Motion Plot|Show Response Plot|Switch Window Size");
    window_->slotShowOnInplanes();
    EXPECT_TRUE(enabledEntries("&View").contains("Overlay On Inplanes*"));
    for (const QAction* action : entries("&Analysis"))
        if (action->text() == "ROI GLM...") {
            EXPECT_EQ(action->toolTip(), "There is no model of a complete run");
        }
    window_->slotRemoveROITimeCoursePlots();
    EXPECT_TRUE(document().regions.empty());
}

TEST_F(MainWindow, TheMultiRunMenuHasTheProjectsAndTheirRuns) {
    const auto texts = [this] {
        QStringList all;
        for (const QAction* action : entries("&Multi-Run"))
            all << action->text() + (action->isChecked() ? "*" : "");
        return all.join('|');
    };
    EXPECT_EQ(texts(), "<Single-run analysis>||<No *.mvco files in watch directory>");
    EXPECT_EQ(enabledEntries("&Multi-Run"), QStringList());
    const RunSettings& settings = window_->session().settings;
    const QString folder = QFileInfo(settings.settingsFilePath).path() + "/";
    writeFile(folder + "a.vco", "TargetFolder: \"./\" ProjectName: \"first\"");
    writeFile(folder + "b.vco", "TargetFolder: \"./\" ProjectName: \"second\"");
    writeFile(folder + "a&b.mvco",
              "FileVersion: 4 MergeType: 1 Title: \"\" ParadigmHelpFile: \"\" "
              "IFISfMRIAnalysisTests: t IFISfMRIAnalysisOptions: t MergeAverageTimeCourse: 0 "
              "MergeSeparatePredictors: 0 TargetFolder: \"./\" ProjectName: \"first.fmr\" "
              "MergeFiles: \"a\" \"b\"");
    writeFile(folder + "first.fmr", {}); // the run of the project's name, not the project
    EXPECT_EQ(texts(), "<Single-run analysis>||a&&b.mvco");
    entries("&Multi-Run").back()->trigger();
    EXPECT_EQ(settings.settingsFilePath, folder + "a&b.mvco");
    window_->timerCheckState(false);
    EXPECT_EQ(window_->windowTitle(), "VCO - a&b.mvco");
    EXPECT_FALSE(control("ReloadDataBtn").isEnabled());
    EXPECT_EQ(texts(), "first*|second||a&&b.mvco");
    entries("&Multi-Run")[1]->trigger();
    EXPECT_EQ(texts(), "first|second*||a&&b.mvco");
    prepare(0, Phase::Recording);
    EXPECT_EQ(enabledEntries("&Multi-Run").join('|'), "first|second*");
    for (const char* name : {"MultiRunTC1", "MultiRunTC3ScrollBar"})
        EXPECT_TRUE(control(name).isHidden()) << name;
}

TEST_F(MainWindow, ClosingDuringARunStopsItAndKeepsTheWindow) {
    prepare(0, Phase::Recording);
    EXPECT_FALSE(window_->close());
    EXPECT_TRUE(requests().interruptFlag);
    QTest::keyRelease(window_.get(), Qt::Key_F4);
    EXPECT_TRUE(requests().interruptFlag) << "the keys that asked for the end don't take it back";
    EXPECT_TRUE(window_->isVisible());
    runOver();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(MainWindow, AnOrderlyEndAnswersWhatIsOpenAndAsksNoMore) {
    MessageBoxes boxes;
    for (const Phase phase : {Phase::Idle, Phase::Recording, Phase::PostProcessing}) {
        prepare(0, phase);
        requests().interruptFlag = false;
        window_->show();
        installMessageHandler(&boxes);
        const auto progress = openCancellableProgressBox(window_.get(), {"Progress", "..."}, pump_);
        QTimer atOnce;
        atOnce.callOnTimeout([&, ended = false]() mutable {
            if (!std::exchange(ended, true))
                return window_->endProgramOrderly();
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                ADD_FAILURE() << box->text().toStdString() << " is open";
                box->reject();
            }
        });
        atOnce.start(0);
        EXPECT_FALSE(askQuestion("May the program end?"));
        EXPECT_TRUE(progress->cancelled());
        EXPECT_TRUE(pump_.waitsGivenUp());
        EXPECT_EQ(requests().interruptFlag, phase == Phase::Recording);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(askQuestion("Again?"));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Again?\n");
        EXPECT_EQ(window_->isVisible(), phase != Phase::Idle);
        runOver();
        QCoreApplication::processEvents();
        EXPECT_FALSE(window_->isVisible());
    }
}

TEST_F(MainWindow, SavingBoxStaysWhateverIsPressed) {
    const std::unique_ptr<ProgressReporter> progress = window_->openSavingProgress();
    auto& box = control<QProgressDialog>("SavingProgressDlg");
    QTest::keyClick(&box, Qt::Key_Escape);
    box.findChild<QPushButton*>()->click();
    progress->setProgress(100);
    EXPECT_TRUE(box.isVisible() && box.value() == 100);
}

TEST_F(MainWindow, PostProcessingRunsAfterOkAndCanBeCancelled) {
    prepare(0, Phase::Recording);
    FMRProject& project = document().project;
    project.projectPath = home_.path() + "/run.fmr";
    project.targetFolder = home_.path() + "/";
    project.ResolutionX = project.ResolutionY = 4;
    project.NrOfSlices = 2;
    project.NrOfVolumes = 20;
    ASSERT_TRUE(project.allocateVolumes());
    window_->session().report.currentVolume = 19;
    runOver();

    const QString folderBefore = QDir::currentPath();
    QDir::setCurrent(home_.path()); // where the filter leaves its design
    for (const bool cancelled : {true, false}) {
        window_->slotPostProcessData();
        control<QGroupBox>("m_TemporalFilters").setChecked(true);
        control<QCheckBox>("m_GoOnWithStatistics").setChecked(false); // there is no protocol
        bool looked = false;
        pump_.after(0, [&] {
            auto& box = control<QProgressDialog>("PostprocessingProgressDlg");
            looked = box.isVisible() && !control("ReloadDataBtn").isEnabled();
            window_->slotPostProcessData();
            window_->slotRealTimeAnalysis();
            if (cancelled)
                box.findChild<QPushButton*>()->click();
        });
        control<QPushButton>("OkBtn").click();
        EXPECT_TRUE(looked);
        EXPECT_EQ(QFile::exists(home_.path() + "/run_THPGLMF2c.fmr"), !cancelled);
        EXPECT_EQ(window_->findChild<QProgressDialog*>(), nullptr);
    }
    QDir::setCurrent(folderBefore);
    window_->slotPostProcessData();
    window_->setSettingsFile(home_.path() + "/run-7.vco");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window_->findChild<PostprocessingDlg*>(), nullptr) << "its run is no longer current";
}

TEST_F(MainWindow, UnsavedRunsAreOfferedAtTheStartAndByTheMenu) {
    RunHead head;
    head.project.ResolutionX = head.project.ResolutionY = head.project.NrOfSlices = 1;
    head.project.NrOfVolumes = 7;
    const QString journal = home_.path() + "/run.vcj";
    auto writer = std::make_unique<JournalWriter>(createJournalFile(journal));
    ASSERT_TRUE(writer->add(uint32_t(RecordKind::Head), {encodeHead(head)}));
    JournalList(folders_.applicationDataPath + "OpenJournals").add(journal);
    window_->offerUnsavedRuns();
    EXPECT_EQ(window_->findChild<QDialog*>("RecoverRunDlg"), nullptr) << "it is being written";
    writer.reset();
    window_->offerUnsavedRuns();
    EXPECT_EQ(control<QTableWidget>("JournalTable").rowCount(), 1);
    choose("NotNowBtn");
    for (const char* name : {"Recover", "Replay"}) {
        choose(name + QString(" Run..."));
        EXPECT_TRUE(control<QDialog>(qPrintable(name + QString("RunDlg"))).isVisible());
        choose("NotNowBtn");
    }
}

TEST_F(MainWindow, TheDecoderGoesBeforeTheSessionThatItWorksOn) {
    choose("BOLD Decoder... ");
    EXPECT_TRUE(window_->session().decoder.isOpen());
    EXPECT_TRUE(control("BOLDDecodingMW").isVisible());
    window_.reset();
}

TEST_F(MainWindow, FeedbackOpensBesideTheSlicesAndGoesWithTheWindow) {
    window_->slotShowNeurofeedbackDlg();
    EXPECT_TRUE(window_->session().feedback.isOpen());
    auto& dialog = control("NeurofeedbackDlg");
    EXPECT_TRUE(dialog.isVisible());
    bool gone = false;
    QObject::connect(&dialog, &QObject::destroyed, qApp, [&gone] { gone = true; });
    window_.reset();
    EXPECT_TRUE(gone);
}
