// The dialogs of the feedback in the hands of an operator who uses everything at any time.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/delayed_feedback_dialog.h"
#include "feedback/ui/neurofeedback_dialog.h"
#include "run/loop/session_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

namespace {

constexpr int volumes = 30;

class FeedbackOperations : public SessionFixture {
protected:
    FeedbackOperations() {
        writeSession(volumes + 2, 2);
        hand_.onEndOfVolume = [this](int volume) {
            if (volume == 0 && session.regions.list()->empty()) {
                EXPECT_TRUE(session.regions.selectRectangle({1, 2, 6, 1, 4}));
            }
        };
        session.runButtonPressed(); // there is a run in memory and on disk
        messages.acceptAnything();
    }

    NeurofeedbackDlg* dialog() { return window_.findChild<NeurofeedbackDlg*>("NeurofeedbackDlg"); }
    void openAll() {
        openNeurofeedbackDialog(session, window_);
        dialog()->invokeOptionsDlg();
        dialog()->onDelayedFeedbackOptions();
        dialog()->openDryRun();
    }
    /// Each control once.
    void useAll() {
        QList<QPointer<QWidget>> controls;
        for (QWidget* widget : window_.findChildren<QWidget*>())
            controls << widget;
        for (const QPointer<QWidget>& control : controls)
            if (QWidget* left = control; left && left->isEnabled())
                use(*left);
        for (const QPointer<QWidget>& control : controls)
            if (QWidget* left = control; left && left->isWindow() && left->isVisible())
                QTest::keyClick(left, Qt::Key_Escape);
    }
    static void use(QWidget& control) {
        if (auto* button = qobject_cast<QAbstractButton*>(&control))
            return button->click();
        if (auto* number = qobject_cast<QAbstractSpinBox*>(&control))
            return number->stepUp();
        if (auto* slider = qobject_cast<QSlider*>(&control))
            return slider->setValue(slider->maximum());
        if (auto* list = qobject_cast<QComboBox*>(&control); list && list->count() > 0) {
            list->setCurrentIndex(list->count() - 1);
            Q_EMIT list->activated(list->count() - 1);
        }
    }
    void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QWidget window_; ///< goes before the session, and the dialogs with it
    ProbeListener hand_{session.listeners, ListenerPlace::Dialogs};
};

} // namespace

TEST_F(FeedbackOperations, EachControlInEachPhaseLeavesTheRunWhole) {
    for (const bool openedBefore : {true, false})
        for (const auto& [phase, name] : phaseNames) {
            SCOPED_TRACE(std::string(name) + (openedBefore ? ", opened before" : ""));
            session.changeSettingsFile(path("test-1.vco"));
            settle();
            runAgain();
            if (openedBefore)
                openAll();
            inPhase(phase, [&, now = phase] {
                openAll();
                for (int times = 0; times < 2; ++times) {
                    useAll();
                    settle();
                }
                EXPECT_EQ(session.phase.now(), now);
                openAll();
                dialog()->close();
                EXPECT_FALSE(session.feedback.isOpen());
                openAll();
            });
            settle();
            EXPECT_EQ(volumesIn("results"), volumes);
            EXPECT_TRUE(session.feedback.isOpen());
            EXPECT_FALSE(session.report.startFailed);
        }
}

TEST_F(FeedbackOperations, AnotherSettingsFileMayComeWhileAMessageIsRead) {
    struct Advancing : UnattendedMessages {
        std::function<void()> advance;
        void show(MessageLevel, const QString&, const QString&) override { advance(); }
    } advancing;
    advancing.advance = [this] {
        session.changeSettingsFile(path("test-1.vco"));
        settle();
    };
    put("test.prt", defaultProtocol().replace("Volumes", "msec").toUtf8());
    session.listeners.documentsLeaving();
    session.functionalDocument.reset();
    openAll();
    MessageHandler* const before = installMessageHandler(&advancing);
    for (QDialog* open : dialog()->findChildren<QDialog*>())
        delete open;
    session.feedback.settingsFileChanged();
    const QPointer<QWidget> dialogBefore = dialog();
    dialog()->selectedDelayedFeedback();
    EXPECT_FALSE(dialogBefore);
    EXPECT_EQ(window_.findChild<QDialog*>(), nullptr);
    installMessageHandler(before);
}

TEST_F(FeedbackOperations, ReturnInAFieldPressesNothing) {
    openNeurofeedbackDialog(session, window_);
    dialog()->openDryRun();
    const qsizetype dialogs = window_.findChildren<QDialog*>().size();
    for (QAbstractSpinBox* field : window_.findChildren<QAbstractSpinBox*>())
        QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(window_.findChildren<QDialog*>().size(), dialogs);
    EXPECT_TRUE(messages.shown().isEmpty());
}

TEST_F(FeedbackOperations, ARecoveredRunBringsItsChoicesAndAReplayIsWrittenAnew) {
    openNeurofeedbackDialog(session, window_);
    auto& baseLevel = *window_.findChild<QSpinBox*>("BaselineDisplayLevelSpBx");
    const auto endOfVolume = hand_.onEndOfVolume;
    hand_.onEndOfVolume = [&](int volume) {
        endOfVolume(volume);
        if (volume == 20)
            baseLevel.setValue(3);
    };
    session.setRunButton(RunButtonState::Ready);
    const QString journal = recordJournal();
    hand_.onEndOfVolume = endOfVolume;
    ASSERT_TRUE(QFile::copy(journal, path("copy.vcj")));
    ASSERT_TRUE(QFile::remove(path("results/test-20.png")));
    baseLevel.setValue(0);
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::Recover));
    EXPECT_EQ(session.feedback.choices().DisplayBaseLevel, 3);
    EXPECT_EQ(baseLevel.value(), 3) << "the dialog shows it";
    EXPECT_FALSE(QFile::exists(path("results/test-20.png"))) << "the subject saw it long ago";
    baseLevel.setValue(1);
    EXPECT_TRUE(
        session.playJournal({path("copy.vcj"), {}, path("again/"), false}, PlayPurpose::Replay));
    EXPECT_EQ(baseLevel.value(), 1) << "the operator decides anew";
    EXPECT_TRUE(QFile::exists(path("again/test-20.png")));
}
