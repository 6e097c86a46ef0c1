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
#include <QToolButton>

const InputControls allPossible{
    .previousExists = true, .nextExists = true, .reloadPossible = true, .preLoadedRegions = {}};

class ContrastsInWindow : public MainWindow {
protected:
    /// Of a column in the list.
    QImage image(int row, int column) {
        return list_.topLevelItem(row)->icon(column).pixmap(20, 16).toImage();
    }
    static QImage resource(const char* name) {
        return QIcon(QStringLiteral(":/images/contrast_%1.png").arg(name)).pixmap(20, 16).toImage();
    }
    void openMenuByKey() {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&list_, &event);
    }
    ContrastList& list_ = control<ContrastList>("ContrastList");
    QCheckBox& conjunction_ = control<QCheckBox>("ConjunctionOfContrastsOp");
};

TEST_F(MainWindow, EachButtonAndEntryDoesWhatItSays) {
    const auto missing = [this](const QString& name) {
        return [this, name] {
            messages_.expectInformation("INFO: The requested settings file \"" + name +
                                        "\" is not available !");
        };
    };
    const auto chosen = [this](const QString& file) {
        return [this, file] { messages_.expectFileChoice("Open File", file); };
    };
    const auto said = [] { return true; }; // the message was met, or the test fails
    const auto viewShown = [this] { return control("FunctionalView").isVisible(); };
    const auto hideView = [this] { control("FunctionalView").hide(); };
    const auto isLit = [this](const char* name) {
        return control<QAbstractButton>(name).isChecked();
    };
    const QString newFile = home_.path() + "/run-7.vco";
    const QString volumesOfInterest = home_.path() + "/a.voi";
    writeFile(volumesOfInterest, "FileVersion: 4\nNrOfVOIs: 1\nNameOfVOI: A\n"
                                 "ColorOfVOI: 255 0 0\nNrOfVoxels: 1\n1 2 3\n");
    const struct {
        const char* control;
        std::function<bool()> isDone;
        std::function<void()> before = [] {};
    } rows[] = {
        {"ToBeginBtn", said, missing("VCO_FacesHouses-0.vco")},
        {"ToEndBtn", said, missing("VCO_FacesHouses-2.vco")},
        {"AutoAdvanceRunBtn",
         [&] { return requests().preLoadROIFile == "/a.roi" && !isLit("AutoAdvanceRunBtn"); },
         chosen("/a.roi")},
        {"AutoStartRunBtn", [&] { return requests().preLoadVOI && !isLit("AutoStartRunBtn"); },
         chosen(volumesOfInterest)},
        {"EPISlicesBtn", [&] { return viewShown() && isLit("EPISlicesBtn"); }, hideView},
        {"Multi-Slice View", viewShown, hideView},
        {"WindowSizeBtn", [&] { return window_->width() == 1024; }},
        {"Switch Window Size", [&] { return window_->width() == 1280; }},
        {"Save View As BMP...", said,
         [&] { messages_.expectWarning("WARNING: There are no slices to save!"); }},
        {"Colors Code Significance", [&] { return document().SignificanceColorCoding; }},
        {"Colors Code Contrasts", [&] { return !document().SignificanceColorCoding; }},
        {"Overlay On Current Func Volume", [&] { return requests().overlayVolumeMode == 1; }},
        {"Overlay On First Func Volume", [&] { return requests().overlayVolumeMode == 0; }},
        {"Overlay On Inplanes", [&] { return requests().pendingOverlayInplane == 1; },
         [&] { requests().pendingOverlayInplane = 0; }},
        {"ReloadDataBtn", [&] { return window_->session().report.startFailed; },
         [&] { messages_.expectWarning("ERROR - Can not open FMR file: *"); }},
        {"Set New VCO File...",
         [&] { return window_->session().settings.settingsFilePath == newFile; }, chosen(newFile)},
        {"MinimizeBtn", [&] { return window_->isMinimized(); }},
    };
    prepare(0);
    for (const auto& [entry, title] : {std::pair("License Information...", "License Information"),
                                       {"About Velo-Cortivo ", "About Velo-Cortivo"},
                                       {"Show Motion Plot", "Motion Plot"},
                                       {"Show Response Plot", "Response Plot"},
                                       {"Recover Run...", "Recover Run"},
                                       {"Replay Run...", "Replay Run"}}) {
        choose(entry);
        const QList<QDialog*> dialogs = window_->findChildren<QDialog*>();
        EXPECT_TRUE(std::ranges::any_of(dialogs, [title = title](const QDialog* dialog) {
            return dialog->isVisible() && dialog->windowTitle() == title;
        })) << title;
    }
    for (const auto& row : rows) {
        SCOPED_TRACE(row.control);
        window_->showInputControls(allPossible);
        row.before();
        choose(row.control);
        EXPECT_TRUE(row.isDone());
    }
    window_->session().phase.enter(Phase::Recording);
    for (const char* ending : {"RecordBtn", "CloseBtn", "Close", "Exit"}) {
        requests().interruptFlag = false;
        choose(ending);
        EXPECT_TRUE(requests().interruptFlag) << ending;
        EXPECT_EQ(window_->endsAfterRun(), ending != QString("RecordBtn")) << ending;
    }
}

TEST_F(MainWindow, NumbersGoToTheSessionWhenTheyAreFinished) {
    OverlayThresholds& thresholds = requests().thresholds;
    int& slices = window_->session().settings.MultiSliceROISelection;
    const struct {
        const char* name;
        std::function<double()> value;
        QString typed[2];    ///< between runs, and during one
        bool isShown = true; ///< in the panel
    } boxes[] = {
        {"ThresholdSpBx", [&] { return double(thresholds.Threshold); }, {"7", "9"}},
        {"ColorMaxThresholdSpBx",
         [&] { return double(thresholds.ColorMaxThreshold); },
         {"12", "12.5"}},
        {"ClusterSizeSpBx", [&] { return double(thresholds.ClusterSizePixels); }, {"1", "9999"}},
        {"MultiSliceROISelectionSpBx", [&] { return double(slices); }, {"99", "1"}, false}};
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
            EXPECT_EQ(panelText() != "before", box.isShown && phase == Phase::Idle) << "the loop's";
        }
    // The box of the upper threshold follows the lower one, and all of them a new run.
    control<QDoubleSpinBox>("ThresholdSpBx").setValue(20.0);
    EXPECT_EQ(control<QDoubleSpinBox>("ColorMaxThresholdSpBx").value(), 21.0);
    thresholds = {1.5f, 6.5f, 3};
    slices = 2;
    prepare(1);
    for (size_t i = 0; const char* shown : {"1.50", "6.50", "3", "2"})
        EXPECT_EQ(control<QAbstractSpinBox>(boxes[i++].name).text(), shown);
    EXPECT_EQ(thresholds, (OverlayThresholds{1.5f, 6.5f, 3}));
}

TEST_F(MainWindow, ButtonsShowHowThingsStand) {
    using enum RunButtonState;
    for (const auto& [state, name] :
         {std::pair(Ready, "ready"), {Finished, "finished"}, {Running, "running"}}) {
        window_->setRunButtonState(state);
        const QIcon icon(QStringLiteral(":/images/record_%1.png").arg(name));
        EXPECT_EQ(control<QToolButton>("RecordBtn").icon().pixmap(85, 40).toImage(),
                  icon.pixmap(85, 40).toImage());
    }
    // A checked button is "C", one that can be pressed "e".
    const auto buttons = [this](const QString& names) {
        QString shown;
        for (const QString& name : names.split(' ')) {
            const auto& button = control<QAbstractButton>(qPrintable(name));
            shown += button.isChecked() ? 'C' : button.isEnabled() ? 'e' : '-';
        }
        return shown;
    };
    const char* const views = "EPISlicesBtn EPISlices3DBtn VMRBtn LeftHemiBtn RightHemiBtn";
    EXPECT_EQ(buttons(views), "-----");
    prepare(0);
    EXPECT_EQ(buttons(views), "C----");
    const std::pair<InputControls, const char*> cases[] = {
        {{.previousExists = true, .preLoadPossible = false, .preLoadedRegions = {}}, "e----"},
        {{.nextExists = true, .preLoadPossible = false, .preLoadedRegions = {}}, "-e---"},
        {{.reloadPossible = true, .preLoadPossible = false, .preLoadedRegions = {}}, "--e--"},
        {{.preLoadedRegions = {}}, "---ee"},
        {{.autoAdvanceRun = true, .preLoadedRegions = {}}, "---Ce"},
        {{.autoStartRun = true, .preLoadedRegions = "/rois/a&b.roi"}, "---eC"}};
    for (const auto& [controls, shown] : cases) {
        window_->showInputControls(controls);
        EXPECT_EQ(buttons("ToBeginBtn ToEndBtn ReloadDataBtn AutoAdvanceRunBtn AutoStartRunBtn"),
                  shown);
    }
    EXPECT_TRUE(control("AutoAdvanceRunBtn").toolTip().contains("/rois/a&amp;b.roi"));
}

TEST_F(ContrastsInWindow, ColumnsToggleSignsOfAtMostFour) {
    prepare(5, Phase::Recording);
    const std::vector<int>& states = document().contrasts.ContrastSelectionStates;
    click(0, ContrastList::Positive);
    conjunction_.click();
    EXPECT_FALSE(conjunction_.isChecked() || document().contrasts.ConjunctionAnalysis) << "of one";
    click(0, ContrastList::Negative);
    EXPECT_EQ(states[0], ContrastBoth);
    click(0, ContrastList::Positive);
    click(0, ContrastList::Name);
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Minus})
        QTest::keyClick(&list_, key);
    EXPECT_EQ(states[0], ContrastNegative);
    for (int row = 1; row < 5; ++row)
        click(row, ContrastList::Positive);
    EXPECT_EQ(states, (std::vector<int>{2, 1, 1, 1, 0}));
    EXPECT_EQ(image(0, ContrastList::Negative), resource("on"));
    EXPECT_EQ(image(0, ContrastList::Positive), resource("off"));
    conjunction_.click();
    EXPECT_TRUE(conjunction_.isChecked() && document().contrasts.ConjunctionAnalysis);
}

TEST_F(ContrastsInWindow, ColoursAreChosenByMouseAndKeyAndRowsGoWithTheirRun) {
    prepare(2);
    ContrastDefinitions& contrasts = document().contrasts;
    click(1, ContrastList::Name);
    for (const bool byKey : {false, true}) {
        const RgbColor color{9, 8, byKey};
        messages_.expectColorChoice("Color of contrast 1", color);
        byKey ? QTest::keyClick(&list_, Qt::Key_C) : click(1, ContrastList::Color);
        EXPECT_EQ(contrasts.ContrastColors, (std::vector<RgbColor>{{}, color}));
        EXPECT_EQ(image(1, ContrastList::Color).pixelColor(10, 8), QColor(9, 8, byKey));
    }
    QTest::keyClick(&list_, Qt::Key_C, Qt::ControlModifier); // no chooser opens

    RunListeners& listeners = window_->session().listeners;
    listeners.settingsFileChanged();
    EXPECT_EQ(list_.topLevelItemCount(), 0);
    listeners.playedRunStays(document());
    EXPECT_EQ(list_.topLevelItem(1)->text(ContrastList::Name), "contrast 1");
    contrasts.ConjunctionAnalysis = true; // as a recovery sets them
    contrasts.ContrastSelectionStates[1] = ContrastPositive;
    runOver();
    EXPECT_TRUE(conjunction_.isChecked());
    EXPECT_EQ(image(1, ContrastList::Positive), resource("on"));
    listeners.documentsLeaving();
    EXPECT_EQ(list_.topLevelItemCount(), 0);
    EXPECT_FALSE(conjunction_.isChecked());
}

TEST_F(ContrastsInWindow, TheirMenuChoosesTheStatistic) {
    prepare(2);
    runOver();
    const ContrastDefinitions& contrasts = document().contrasts;
    const auto openMenuAt = [&](QPoint place) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, list_.mapToGlobal(place));
        QApplication::sendEvent(list_.viewport(), &event);
    };
    const auto action = [&](const char* name) { return list_.findChild<QAction*>(name); };
    const auto showsF = [this] { return panelText().contains("F(1,1) ="); };
    openMenuByKey();
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
    conjunction_.setChecked(true);

    openMenuAt(list_.visualItemRect(list_.topLevelItem(1)).center());
    EXPECT_TRUE(action("ShowTMaps")->isChecked());
    action("ShowFOfContrast")->trigger();
    EXPECT_EQ(contrasts.ContrastSelectionStates, (std::vector<int>{0, 1}));
    EXPECT_FALSE(conjunction_.isChecked());
    EXPECT_TRUE(showsF());
    openMenuAt({5, list_.viewport()->height() - 2});
    EXPECT_FALSE(action("ShowFOfContrast")->isEnabled()) << "below the contrasts";
    EXPECT_TRUE(action("ShowFOfContrast")->isChecked());
    action("ShowFOfSelected")->trigger();
    EXPECT_TRUE(showsF());
    click(1, ContrastList::Positive);
    EXPECT_FALSE(showsF()) << "of no contrast";
    action("OneSidedTesting")->trigger();
    EXPECT_EQ(contrasts.shownStatistic, ShownStatistic::FOfSelected);
    EXPECT_TRUE(contrasts.oneSidedTesting);
    window_->session().listeners.documentsLeaving();
    EXPECT_FALSE(control<QMenu>("ContrastStatisticMenu").isVisible());
}

TEST_F(ContrastsInWindow, MapsOfAPluginTakeTheirPlace) {
    prepare(2);
    runOver();
    auto& option = control<QCheckBox>("TogglePluginMapsOp");
    SessionPluginMaps& maps = window_->session().pluginMaps;
    const RegisteredPluginMaps& registered = requests().pluginMaps;
    const auto header = [&] { return list_.headerItem()->text(ContrastList::Name); };
    ASSERT_TRUE(maps.registerMaps(1002));
    ASSERT_TRUE(document().pluginMaps.allocate(1002, {1, 1, 1}));
    EXPECT_TRUE(option.isVisible() && !option.isChecked());
    EXPECT_EQ(list_.topLevelItemCount(), 2);
    option.click();
    EXPECT_TRUE(registered.shown);
    EXPECT_FALSE(conjunction_.isEnabled());
    EXPECT_TRUE(list_.toolTip().startsWith("<p>Maps of the plug-in"));
    EXPECT_TRUE(panelText().contains("map > 3.00"));
    EXPECT_EQ(header(), "Map");
    ASSERT_EQ(list_.topLevelItemCount(), 1001);
    EXPECT_EQ(list_.topLevelItem(1000)->text(0), QString(QChar(0x2026)) + " and 2 more");
    maps.setName(1, "<i>second</i>");
    maps.updateList();
    EXPECT_EQ(list_.topLevelItem(1)->text(0), "<i>second</i>");
    EXPECT_EQ(list_.topLevelItem(1)->toolTip(0), "<p>&lt;i&gt;second&lt;/i&gt;</p>");

    click(1, ContrastList::Negative);
    QTest::keyClick(&list_, Qt::Key_Plus);
    EXPECT_EQ(registered.state(1), 3);
    click(1, ContrastList::Positive);
    EXPECT_EQ(registered.state(1), 2);
    const auto hasColor = [&](int row) {
        return !list_.topLevelItem(row)->icon(ContrastList::Color).isNull();
    };
    EXPECT_TRUE(hasColor(0) && hasColor(1) && !hasColor(2));
    click(1, ContrastList::Color); // no chooser opens
    window_->slotDoubleClickedContrastList(list_.topLevelItem(1), ContrastList::Name);
    EXPECT_FALSE(hasColor(0));
    window_->slotDoubleClickedContrastList(list_.topLevelItem(1000), ContrastList::Name);
    window_->slotClickedContrastList(list_.topLevelItem(1000), ContrastList::Positive);
    EXPECT_EQ(registered.states(), (std::map<int, int>{{1, 2}}));
    openMenuByKey();
    EXPECT_FALSE(control<QMenu>("ContrastStatisticMenu").isVisible());

    maps.setThreshold(20.0f);
    EXPECT_EQ(control<QDoubleSpinBox>("ThresholdSpBx").value(), 21.0);
    EXPECT_EQ(requests().thresholds.Threshold, 20.0f);
    prepare(2);
    EXPECT_EQ(list_.topLevelItemCount(), 1001) << "they stay for the next run";
    maps.clear();
    EXPECT_TRUE(option.isHidden() && !option.isChecked() && conjunction_.isEnabled());
    EXPECT_EQ(header(), "Contrast");
    EXPECT_EQ(list_.topLevelItem(1)->text(0), "contrast 1");
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

    QWidget& list = control("ContrastList");
    list.setFocus();
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &view);
    QTest::keyClick(&view, Qt::Key_Tab);
    list.setFocus();
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &list) << "the operator went there";
    window_->focusView();
    EXPECT_EQ(window_->focusWidget(), &view);
    auto& box = control<QDoubleSpinBox>("ThresholdSpBx");
    QTest::mouseClick(box.findChild<QLineEdit*>(), Qt::LeftButton);
    window_->updateViews();
    EXPECT_EQ(window_->focusWidget(), &box) << "a number is being typed";
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(window_->focusWidget(), &view);
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
