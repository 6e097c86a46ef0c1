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

TEST_F(MainWindow, MenusFollowThePhase) {
    // Entries by what holds of them at the start, during a run, and after it: they can be chosen
    // ("e"), are marked too ("M"), or neither.
    const std::pair<const char*, QString> groups[] = {
        {"eee",
         "Close|Exit|SVM Training...|RFE Training...|Real-Time SVM Classification...|"
         "Neurofeedback... |BOLD Decoder... |Log ROI Time Point Files (RTPs)|Log ROI Betas (BTC)|"
         "Show ROIs With Rectangles|Show ROI Time Courses Container|Show Motion Plot|"
         "Show Response Plot|Switch Window Size"},
        {"e-e", "Set New VCO File...|Load Anatomy...|Recover Run...|Replay Run..."},
        {"-ee", "Save View As BMP...|Multi-Slice View"},
        {"--e", "Export As NIfTI...|Post-Processing...|Load ROIs...|Save ROIs...|Load VOIs...|"
                "Save VOIs...|Overlay On Inplanes|Remove ROI Time Course Plots"},
        {"-eM", "Colors Code Significance"},
        {"-Me", "Colors Code Contrasts"},
        {"MMe", "Epoch-Based Averaging|Overlay On First Func Volume|"
                "Show ROIs With Rectangles And Highlighted Voxels"},
        {"eeM", "Select Only Voxels Of Plug-In Maps|Log ROI Time Courses (ERT)|"
                "Overlay On Current Func Volume|Current Func Volume Before Preprocessing|"
                "Show ROIs With Highlighted Voxels|Display Detrended ROI Time Courses"}};
    QMap<QString, QString> states;
    for (const auto& [state, names] : groups)
        for (const QString& name : names.split('|'))
            states[name] = state;
    const auto expectMenus = [&](qsizetype situation) {
        qsizetype nrFound = 0;
        for (const char* menu : {"&File", "&Analysis", "&View"})
            for (const QAction* action : entries(menu)) {
                nrFound += states.contains(action->text());
                const char state = !action->isEnabled() ? '-' : action->isChecked() ? 'M' : 'e';
                EXPECT_TRUE(action->isSeparator() ||
                            states.value(action->text(), "---")[situation] == state)
                    << action->text().toStdString() << ", situation " << situation;
            }
        EXPECT_EQ(nrFound, states.size());
    };
    expectMenus(0);
    prepare(1, Phase::Recording);
    expectMenus(1);
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
    expectMenus(2);
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

TEST_F(MainWindow, ACloseThatIsRefusedIsTakenBack) {
    prepare(0, Phase::Recording);
    writeFile(home_.path() + "/results", {}); // so that nothing can be saved in it
    document().project.targetFolder = home_.path() + "/results/";
    document().project.projectPath = home_.path() + "/results/run.fmr";
    EXPECT_FALSE(window_->close());
    window_->session().report.onlyInMemory = true;
    int questions = 0;
    messages_.onQuestion = [&] { messages_.acceptAnything(++questions == 1); }; // save; not again
    runOver();
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(questions, 2);
    EXPECT_TRUE(window_->isVisible());
    QTest::keyRelease(window_.get(), Qt::Key_Return);
    EXPECT_FALSE(requests().interruptFlag) << "a release of a key clears it again";
    window_->session().report.onlyInMemory = false;
    prepare(0, Phase::Recording);
    runOver();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window_->isVisible()) << "the next run doesn't end the program";
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
}

TEST_F(MainWindow, WindowsOfASessionGoBeforeIt) {
    choose("BOLD Decoder... ");
    choose("Neurofeedback... ");
    EXPECT_TRUE(window_->session().decoder.isOpen() && window_->session().feedback.isOpen());
    int gone = 0;
    for (const char* name : {"BOLDDecodingMW", "NeurofeedbackDlg"}) {
        EXPECT_TRUE(control(name).isVisible());
        QObject::connect(&control(name), &QObject::destroyed, qApp, [&gone] { ++gone; });
    }
    window_.reset();
    EXPECT_EQ(gone, 2);
}
