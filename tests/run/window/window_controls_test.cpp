// The controls of the main window: each is connected to what it says, and shows how things stand.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/main_window.h"

#include "display/qt_cortivo_view.h"
#include "plugin/host/program_access.h"
#include "support/files.h"

#include <QCheckBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QTextBrowser>
#include <QToolButton>

const InputControls allPossible{
    .previousExists = true, .nextExists = true, .reloadPossible = true, .preLoadedRegions = {}};

TEST_F(MainWindow, EachButtonAndEntryDoesWhatItSays) {
    const auto missing = [this](const char* name) {
        messages_.expectInformation(
            QStringLiteral("INFO: The requested settings file \"%1\" is not available !")
                .arg(name));
    };
    const auto chosen = [this](const char* file) { messages_.expectFileChoice("Open File", file); };
    const auto said = [] { return true; }; // the message was met, or the test fails
    const auto isOpen = [this](const char* title) {
        const QList<QDialog*> dialogs = window_->findChildren<QDialog*>();
        return std::ranges::any_of(dialogs, [&](const QDialog* dialog) {
            return dialog->isVisible() && dialog->windowTitle() == title;
        });
    };
    const auto viewShown = [this] { return control("FunctionalView").isVisible(); };
    const auto nothing = [] {};
    const auto hideView = [this] { control("FunctionalView").hide(); };
    const QString newFile = home_.path() + "/run-7.vco";
    const auto isLit = [this](const char* name) {
        return control<QAbstractButton>(name).isChecked();
    };
    const struct {
        const char* control;
        std::function<void()> before;
        std::function<bool()> isDone;
        Phase phase = Phase::Idle;
    } rows[] = {
        {"ToBeginBtn", [&] { missing("VCO_FacesHouses-0.vco"); }, said},
        {"ToEndBtn", [&] { missing("VCO_FacesHouses-2.vco"); }, said},
        {"AutoAdvanceRunBtn", [&] { chosen("/a.roi"); },
         [&] { return requests().preLoadROIFile == "/a.roi" && !isLit("AutoAdvanceRunBtn"); }},
        {"AutoStartRunBtn",
         [&] {
             writeFile(home_.path() + "/a.voi", "FileVersion: 4\nNrOfVOIs: 1\nNameOfVOI: A\n"
                                                "ColorOfVOI: 255 0 0\nNrOfVoxels: 1\n1 2 3\n");
             messages_.expectFileChoice("Open File", home_.path() + "/a.voi");
         },
         [&] { return requests().preLoadVOI && !isLit("AutoStartRunBtn"); }},
        {"EPISlicesBtn", hideView, [&] { return viewShown() && isLit("EPISlicesBtn"); }},
        {"Multi-Slice View", hideView, viewShown},
        {"WindowSizeBtn", nothing, [&] { return window_->width() == 1024; }},
        {"Switch Window Size", nothing, [&] { return window_->width() == 1280; }},
        {"Save View As BMP...",
         [&] { messages_.expectWarning("WARNING: There are no slices to save!"); }, said},
        {"Colors Code Significance", nothing, [&] { return document().SignificanceColorCoding; }},
        {"Colors Code Contrasts", nothing, [&] { return !document().SignificanceColorCoding; }},
        {"Overlay On Current Func Volume", nothing,
         [&] { return requests().overlayVolumeMode == 1; }},
        {"Overlay On First Func Volume", nothing,
         [&] { return requests().overlayVolumeMode == 0; }},
        {"Overlay On Inplanes", [&] { requests().pendingOverlayInplane = 0; },
         [&] { return requests().pendingOverlayInplane == 1; }},
        {"License Information...", nothing, [&] { return isOpen("License Information"); }},
        {"About Velo-Cortivo ", nothing, [&] { return isOpen("About Velo-Cortivo"); }},
        {"RecordBtn", nothing, [&] { return requests().interruptFlag && !window_->endsAfterRun(); },
         Phase::Recording},
        {"CloseBtn", nothing, [&] { return requests().interruptFlag; }, Phase::Recording},
        {"Close", nothing, [&] { return requests().interruptFlag; }, Phase::Recording},
        {"Exit", nothing, [&] { return requests().interruptFlag; }, Phase::Recording},
        {"ReloadDataBtn", [&] { messages_.expectWarning("ERROR - Can not open FMR file: *"); },
         [&] { return window_->session().report.startFailed; }},
        {"Set New VCO File...", [&] { chosen(newFile.toUtf8()); },
         [&] { return window_->session().settings.settingsFilePath == newFile; }},
        {"Show Motion Plot", nothing, [&] { return isOpen("Motion Plot"); }},
        {"Show Response Plot", nothing, [&] { return isOpen("Response Plot"); }},
        {"MinimizeBtn", nothing, [&] { return window_->isMinimized(); }},
    };
    prepare(0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.control);
        window_->showInputControls(allPossible);
        requests().interruptFlag = false;
        row.before();
        window_->session().phase.enter(row.phase);
        choose(row.control);
        window_->session().phase.enter(Phase::Idle);
        EXPECT_TRUE(row.isDone());
    }
}

TEST_F(MainWindow, NumbersGoToTheSessionWhenTheyAreFinished) {
    const OverlayThresholds& thresholds = requests().thresholds;
    const auto panel = [this] { return control<QTextBrowser>("LogInfos").toPlainText(); };
    const auto threshold = [&] { return double(thresholds.Threshold); };
    const auto upper = [&] { return double(thresholds.ColorMaxThreshold); };
    const struct {
        const char* name;
        std::function<double()> value;
        QString typed[2];    ///< between runs, and during one
        bool isShown = true; ///< in the panel
    } boxes[] = {
        {"ThresholdSpBx", threshold, {"7", "9"}},
        {"ColorMaxThresholdSpBx", upper, {"12", "12.5"}},
        {"ClusterSizeSpBx", [&] { return double(thresholds.ClusterSizePixels); }, {"1", "9999"}},
        {"MultiSliceROISelectionSpBx",
         [&] { return double(window_->session().settings.MultiSliceROISelection); },
         {"99", "1"},
         false},
    };
    prepare(1);
    for (const Phase phase : {Phase::Idle, Phase::Recording})
        for (const auto& box : boxes) {
            SCOPED_TRACE(box.name);
            window_->session().phase.enter(phase);
            window_->showLogText("before");
            auto* field = control(box.name).findChild<QLineEdit*>();
            const double before = box.value();
            const QString& number = box.typed[phase == Phase::Idle ? 0 : 1];
            field->selectAll();
            QTest::keyClicks(field, number);
            EXPECT_EQ(box.value(), before);
            QTest::keyClick(field, Qt::Key_Return);
            EXPECT_EQ(box.value(), number.toDouble());
            EXPECT_EQ(panel() != "before", box.isShown && phase == Phase::Idle) << "the loop's";
        }
    // The box of the upper threshold follows the lower one, and all of them a new run.
    control<QDoubleSpinBox>("ThresholdSpBx").setValue(20.0);
    EXPECT_EQ(control<QDoubleSpinBox>("ColorMaxThresholdSpBx").value(), 21.0);
    requests().thresholds = {1.5f, 6.5f, 3};
    window_->session().settings.MultiSliceROISelection = 2;
    prepare(1);
    QStringList shown;
    for (const auto& box : boxes)
        shown << control<QAbstractSpinBox>(box.name).text();
    EXPECT_EQ(shown.join(' '), "1.50 6.50 3 2");
    EXPECT_EQ(requests().thresholds, (OverlayThresholds{1.5f, 6.5f, 3}));
}

TEST_F(MainWindow, RunButtonShowsItsStateAndViewButtonsTheirViews) {
    using enum RunButtonState;
    for (const auto& [state, name] :
         {std::pair(Ready, "ready"), {Finished, "finished"}, {Running, "running"}}) {
        window_->setRunButtonState(state);
        const QIcon icon(QStringLiteral(":/images/record_%1.png").arg(name));
        EXPECT_EQ(control<QToolButton>("RecordBtn").icon().pixmap(85, 40).toImage(),
                  icon.pixmap(85, 40).toImage());
    }
    const auto buttons = [this] {
        QString shown;
        for (const char* name :
             {"EPISlicesBtn", "EPISlices3DBtn", "VMRBtn", "LeftHemiBtn", "RightHemiBtn"}) {
            const auto& view = control<QAbstractButton>(name);
            shown += view.isChecked() ? 'C' : view.isEnabled() ? 'e' : '-';
        }
        return shown;
    };
    EXPECT_EQ(buttons(), "-----");
    prepare(0);
    EXPECT_EQ(buttons(), "C----");
}

TEST_F(MainWindow, ContrastListShowsSelectionAndEmptiesWithItsRun) {
    prepare(2);
    auto& list = control<ContrastList>("ContrastList");
    const auto image = [&](int column) {
        return list.topLevelItem(1)->icon(column).pixmap(20, 16).toImage();
    };
    const auto resource = [](const char* name) {
        return QIcon(QStringLiteral(":/images/contrast_%1.png").arg(name)).pixmap(20, 16).toImage();
    };
    click(1, ContrastList::Name);
    QTest::keyClick(&list, Qt::Key_Minus);
    EXPECT_EQ(image(ContrastList::Negative), resource("on"));
    EXPECT_EQ(image(ContrastList::Positive), resource("off"));
    for (const bool byKey : {false, true}) {
        const RgbColor color{9, 8, byKey};
        messages_.expectColorChoice("Color of contrast 1", color);
        byKey ? QTest::keyClick(&list, Qt::Key_C) : click(1, ContrastList::Color);
        EXPECT_EQ(document().contrasts.ContrastColors, (std::vector<RgbColor>{{}, color}));
        EXPECT_EQ(image(ContrastList::Color).pixelColor(10, 8), QColor(9, 8, byKey));
    }
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(list.topLevelItem(1)->text(ContrastList::Name), "contrast 1");

    RunListeners& listeners = window_->session().listeners;
    auto& conjunction = control<QCheckBox>("ConjunctionOfContrastsOp");
    listeners.settingsFileChanged();
    EXPECT_EQ(list.topLevelItemCount(), 0);
    listeners.playedRunStays(document());
    EXPECT_EQ(list.topLevelItemCount(), 2);
    document().contrasts.ConjunctionAnalysis = true; // as a recovery sets them
    document().contrasts.ContrastSelectionStates[1] = ContrastPositive;
    runOver();
    EXPECT_TRUE(conjunction.isChecked());
    EXPECT_EQ(image(ContrastList::Positive), resource("on"));
    listeners.documentsLeaving();
    EXPECT_EQ(list.topLevelItemCount(), 0);
    EXPECT_FALSE(conjunction.isChecked());
}

TEST_F(MainWindow, MenuOfTheContrastListChoosesTheStatistic) {
    prepare(2);
    runOver();
    auto& list = control<ContrastList>("ContrastList");
    auto& conjunction = control<QCheckBox>("ConjunctionOfContrastsOp");
    const auto openAt = [&](QPoint place, QContextMenuEvent::Reason reason) {
        QWidget* at = reason == QContextMenuEvent::Keyboard ? &list : list.viewport();
        QContextMenuEvent event(reason, place, at->mapToGlobal(place));
        QApplication::sendEvent(at, &event);
    };
    const auto action = [&](const char* name) { return list.findChild<QAction*>(name); };
    openAt({}, QContextMenuEvent::Keyboard);
    for (const char* name :
         {"ShowTMaps", "ShowFOfContrast", "ShowFOfSelected", "OneSidedTesting"}) {
        EXPECT_FALSE(action(name)->isEnabled()) << name;
        EXPECT_TRUE(action(name)->toolTip().startsWith("Needs the model")) << name;
    }
    WholeRunModel& model = document().wholeRunModel;
    model.size = {1, 1, 1};
    model.studies = {{3, "", "", 1}};
    model.predictors.resize(2);
    model.conditionOfColumn = {0, -1};
    model.GLMDesign = {1, 1, 0, 1, 0, 1};
    model.GLMInverse = {1, 0, 0, 1};
    model.rank = 2;
    ASSERT_TRUE(model.GLMMaps.allocate(size_t(model.nrOfMapRows())));
    document().mask = {{1}, {{0, 1}}};
    conjunction.setChecked(true);

    openAt(list.visualItemRect(list.topLevelItem(1)).center(), QContextMenuEvent::Mouse);
    EXPECT_TRUE(action("ShowTMaps")->isChecked());
    action("ShowFOfContrast")->trigger();
    EXPECT_EQ(document().contrasts.ContrastSelectionStates, (std::vector<int>{0, 1}));
    EXPECT_FALSE(conjunction.isChecked());
    EXPECT_TRUE(control<QTextBrowser>("LogInfos").toPlainText().contains("F(1,1) ="));
    openAt(QPoint(5, list.viewport()->height() - 2), QContextMenuEvent::Mouse);
    EXPECT_FALSE(action("ShowFOfContrast")->isEnabled()) << "below the contrasts";
    EXPECT_TRUE(action("ShowFOfContrast")->isChecked());
    action("ShowFOfSelected")->trigger();
    EXPECT_TRUE(control<QTextBrowser>("LogInfos").toPlainText().contains("F(1,1) ="));
    click(1, ContrastList::Positive);
    EXPECT_FALSE(control<QTextBrowser>("LogInfos").toPlainText().contains("F(1,1) ="))
        << "of no contrast";
    action("OneSidedTesting")->trigger();
    EXPECT_EQ(document().contrasts.shownStatistic, ShownStatistic::FOfSelected);
    EXPECT_TRUE(document().contrasts.oneSidedTesting);
    window_->session().listeners.documentsLeaving();
    EXPECT_FALSE(control<QMenu>("ContrastStatisticMenu").isVisible());
}

TEST_F(MainWindow, MapsOfAPluginTakeThePlaceOfTheContrasts) {
    prepare(2);
    runOver();
    auto& list = control<ContrastList>("ContrastList");
    auto& option = control<QCheckBox>("TogglePluginMapsOp");
    auto& conjunction = control<QCheckBox>("ConjunctionOfContrastsOp");
    SessionPluginMaps& maps = window_->session().pluginMaps;
    const RegisteredPluginMaps& registered = requests().pluginMaps;
    const auto header = [&] { return list.headerItem()->text(ContrastList::Name); };
    EXPECT_TRUE(option.isHidden());
    ASSERT_TRUE(maps.registerMaps(1002));
    ASSERT_TRUE(document().pluginMaps.allocate(1002, {1, 1, 1}));
    EXPECT_TRUE(option.isVisible() && !option.isChecked());
    EXPECT_EQ(list.topLevelItemCount(), 2);
    option.click();
    EXPECT_TRUE(registered.shown);
    EXPECT_FALSE(conjunction.isEnabled());
    EXPECT_TRUE(list.toolTip().startsWith("<p>Maps of the plug-in"));
    EXPECT_TRUE(control<QTextBrowser>("LogInfos").toPlainText().contains("map > 3.00"));
    EXPECT_EQ(header(), "Map");
    ASSERT_EQ(list.topLevelItemCount(), 1001);
    EXPECT_EQ(list.topLevelItem(1000)->text(0), QString(QChar(0x2026)) + " and 2 more");
    maps.setName(1, "<i>second</i>");
    maps.updateList();
    EXPECT_EQ(list.topLevelItem(1)->text(0), "<i>second</i>");
    EXPECT_EQ(list.topLevelItem(1)->toolTip(0), "<p>&lt;i&gt;second&lt;/i&gt;</p>");

    const auto hasColor = [&](int row) {
        return !list.topLevelItem(row)->icon(ContrastList::Color).isNull();
    };
    click(1, ContrastList::Negative);
    QTest::keyClick(&list, Qt::Key_Plus);
    EXPECT_EQ(registered.state(1), 3);
    click(1, ContrastList::Positive);
    EXPECT_EQ(registered.state(1), 2);
    EXPECT_TRUE(hasColor(0) && hasColor(1) && !hasColor(2));
    click(1, ContrastList::Color); // no chooser opens: it would have to be expected
    for (const int row : {1, 1000}) {
        window_->slotDoubleClickedContrastList(list.topLevelItem(row), ContrastList::Name);
        EXPECT_EQ(registered.states(), (std::map<int, int>{{1, 2}}));
    }
    EXPECT_FALSE(hasColor(0));
    window_->slotClickedContrastList(list.topLevelItem(1000), ContrastList::Positive);
    EXPECT_EQ(registered.states(), (std::map<int, int>{{1, 2}}));
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(&list, &menu);
    EXPECT_FALSE(control<QMenu>("ContrastStatisticMenu").isVisible());

    maps.setThreshold(20.0f);
    EXPECT_EQ(control<QDoubleSpinBox>("ThresholdSpBx").value(), 21.0);
    EXPECT_EQ(control<QDoubleSpinBox>("ColorMaxThresholdSpBx").value(), 21.0);
    EXPECT_EQ(requests().thresholds.Threshold, 20.0f);
    prepare(2);
    EXPECT_EQ(list.topLevelItemCount(), 1001) << "they stay for the next run";
    maps.clear();
    EXPECT_TRUE(option.isHidden() && !option.isChecked() && conjunction.isEnabled());
    EXPECT_EQ(header(), "Contrast");
    EXPECT_EQ(list.topLevelItem(1)->text(0), "contrast 1");
}

TEST_F(MainWindow, IsDraggedByItsFrameAndComesBackToItsPlace) {
    window_->move(0, 0);
    const auto send = [this](QEvent::Type type, QPoint at, Qt::MouseButton cause) {
        QMouseEvent event(type, at, window_->mapToGlobal(at), cause, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window_.get(), &event);
    };
    send(QEvent::MouseButtonPress, {5, 5}, Qt::LeftButton);
    send(QEvent::MouseMove, {35, 25}, Qt::NoButton);
    send(QEvent::MouseButtonRelease, {5, 5}, Qt::LeftButton);
    send(QEvent::MouseMove, {65, 45}, Qt::NoButton);
    EXPECT_EQ(window_->pos(), QPoint(30, 20));
    ASSERT_TRUE(window_->writeMasterFile());
    ASSERT_TRUE(window_->readMasterFile());
    window_->move(0, 0);
    window_->placeOnScreen();
    EXPECT_EQ(window_->pos(), QPoint(30, 20));
    window_->move(5000, 0);
    window_->slotUpdateWindowSize();
    EXPECT_LT(window_->pos().x(), 5000) << "its title row comes back";

    window_->slotSwitchWindowSize();
    EXPECT_TRUE(window_->close());
    EXPECT_TRUE(contentOf(folders_.applicationDataPath + "MasterVCO")
                    .contains("WindowSize:                1"));
}

TEST_F(MainWindow, KeysNeedADocumentAndCountOnce) {
    const auto values = [this] {
        return std::pair(requests().startOffsetSeconds, requests().thresholds.Threshold);
    };
    const auto pressBoth = [](QWidget* widget) {
        QTest::keyClick(widget, Qt::Key_Up, Qt::ShiftModifier);
        QTest::keyClick(widget, Qt::Key_Up, Qt::ControlModifier);
    };
    pressBoth(window_.get());
    prepare(0);
    QDialog box(window_.get());
    box.setModal(true);
    box.show();
    pressBoth(&box);
    QTest::keyPress(&box, Qt::Key_Escape);
    EXPECT_TRUE(requests().interruptFlag);
    EXPECT_FALSE(box.isVisible());
    // Without a modifier, and with another one, they are the view's.
    QTest::keyClick(window_.get(), Qt::Key_Up);
    QTest::keyClick(window_.get(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(window_.get(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(values(), std::pair(0, 3.0f));
    pressBoth(&control("ContrastList"));
    EXPECT_EQ(values(), std::pair(1, 3.2f));
    QTest::keyClick(window_->windowHandle(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(requests().startOffsetSeconds, 0);
    EXPECT_DOUBLE_EQ(control<QDoubleSpinBox>("ThresholdSpBx").value(), 3.2);

    // Escape sets the flag until a key is released; a held key repeats itself.
    QTest::keyPress(window_.get(), Qt::Key_Escape);
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(window_.get(), &repeated);
    EXPECT_TRUE(requests().interruptFlag);
    QTest::keyRelease(&control("ContrastList"), Qt::Key_A);
    EXPECT_FALSE(requests().interruptFlag);
}

TEST_F(MainWindow, ViewTakesWhatTheSessionHasAndTheKeyboard) {
    prepare(0);
    const std::vector<int16_t> samples(8 * 8 * 4, 50);
    document().slices.greyScale.high = 100;
    document().slices.createSlicePixmaps(samples, {8, 8, 4});
    document().slices.createInplanePixmaps(std::vector<int16_t>(16 * 16 * 4, 90), {16, 16, 4});
    document().mosaic = {2, 2, 0, 2, 1};
    auto& view = control<QtCortivoView>("FunctionalView");
    const auto size = [&] {
        window_->updateViews();
        return view.mosaic().size();
    };
    const QSize functional = size();
    requests().pendingOverlayInplane = 0;
    EXPECT_EQ(size(), functional);
    requests().pendingOverlayInplane = 1;
    EXPECT_NE(size(), functional);

    control("ContrastList").setFocus();
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &view);
    QTest::keyClick(&view, Qt::Key_Tab);
    control("ContrastList").setFocus();
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &control("ContrastList")) << "the operator went there";
    window_->focusView();
    EXPECT_EQ(window_->focusWidget(), &view);
    auto& box = control<QDoubleSpinBox>("ThresholdSpBx");
    QTest::mouseClick(box.findChild<QLineEdit*>(), Qt::LeftButton);
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &box) << "a number is being typed";
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(window_->focusWidget(), &view);
    QTest::keyClick(&control("WindowSizeBtn"), Qt::Key_Space);
    EXPECT_EQ(window_->width(), 1024) << "keys reach the controls";
}

// Auto-start and auto-advance live on this.
TEST_F(MainWindow, LooksAtTheSettingsFileByItself) {
    EXPECT_EQ(window_->windowTitle(), "Velo-Cortivo");
    EXPECT_EQ(programAccess(), window_.get());
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return window_->windowTitle() == "VCO - VCO_FacesHouses-1.vco"; }, 60000));
    window_.reset();
    EXPECT_EQ(programAccess(), nullptr);
}
