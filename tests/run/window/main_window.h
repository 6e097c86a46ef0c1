// A main window in a home of its own, with a scripted operator and a run that stands still.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/window/velo_cortivo.h"
#include "stats/ui/contrast_list.h"
#include "support/scripted_messages.h"
#include "support/simulated_pump.h"

#include <QAbstractButton>
#include <QDir>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <gtest/gtest.h>

class MainWindow : public testing::Test {
protected:
    MainWindow() {
        folders_.applicationDataPath = home_.path() + "/app/";
        folders_.dataPath = home_.path() + "/data/";
        folders_.homePath = home_.path() + "/";
        QDir().mkpath(folders_.applicationDataPath);
        open(pump_);
    }
    void open(EventPump& pump) {
        window_ = std::make_unique<VeloCortivo>(folders_, pump);
        EXPECT_TRUE(window_->readMasterFile());
        window_->initVars();
        window_->applyWindowSize();
        window_->show();
    }

    template<typename Widget = QWidget> Widget& control(const char* name) {
        auto* widget = window_->findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }
    OperatorRequests& requests() { return window_->session().requests; }
    QtCortivoDoc& document() { return *window_->session().functionalDocument; }

    /// A document with contrasts, as a prepared run has it; the session stays in that phase.
    void prepare(int nrOfContrasts, Phase phase = Phase::Idle) {
        RunSession& session = window_->session();
        window_->workStarting();
        session.listeners.documentsLeaving();
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        session.anatomicalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Anatomical);
        session.listeners.documentsArrived(document());
        ContrastDefinitions& contrasts = document().contrasts;
        contrasts.NrOfContrasts = nrOfContrasts;
        for (int index = 0; index < nrOfContrasts; ++index)
            contrasts.ContrastNames << QStringLiteral("contrast %1").arg(index);
        contrasts.ContrastSelectionStates.assign(size_t(nrOfContrasts), ContrastOff);
        contrasts.ContrastColors.assign(size_t(nrOfContrasts), RgbColor{});
        contrasts.ContrastValues.assign(size_t(nrOfContrasts), {-1, 1});
        contrasts.ContrastWeights.assign(size_t(nrOfContrasts), {1});
        session.listeners.runPrepared(document());
        session.phase.enter(phase);
    }
    void runOver() {
        window_->session().phase.enter(Phase::Idle);
        window_->workEnded();
    }
    std::vector<QAction*> entries(const QString& title) {
        for (QMenu* menu : control<QMenuBar>("MenuBar").findChildren<QMenu*>())
            if (menu->title() == title) {
                Q_EMIT menu->aboutToShow();
                const QList<QAction*> actions = menu->actions();
                return {actions.begin(), actions.end()};
            }
        return {};
    }
    /// The entries of a menu that can be chosen now; those with a mark that is set have a "*".
    QStringList enabledEntries(const char* title) {
        QStringList texts;
        for (const QAction* action : entries(title))
            if (action->isEnabled() && !action->isSeparator())
                texts << action->text() + (action->isChecked() ? "*" : "");
        return texts;
    }
    /// A click on the button of this name, or on the menu entry of this text.
    void choose(const QString& control) {
        if (auto* button = window_->findChild<QAbstractButton*>(control))
            return button->click();
        for (const char* menu : {"&File", "&Analysis", "&View", "&Help"})
            for (QAction* action : entries(menu))
                if (action->text() == control)
                    return action->trigger();
        ADD_FAILURE() << control.toStdString() << " is missing";
    }
    QString panelText() { return control<QTextBrowser>("LogInfos").toPlainText(); }
    void click(int row, int column) {
        auto& list = control<ContrastList>("ContrastList");
        const QRect cell = list.visualRect(list.model()->index(row, column));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, cell.center());
    }

    ScriptedMessages messages_;
    SimulatedPump pump_;
    QTemporaryDir home_;
    StandardFolders folders_;
    std::unique_ptr<VeloCortivo> window_;
};
