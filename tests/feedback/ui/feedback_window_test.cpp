// The feedback beside the whole program, on a desk of two screens.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/neurofeedback_dialog.h"
#include "feedback/ui/subject_display.h"
#include "run/window/main_window.h"
#include "run/window/message_boxes.h"

#include <QApplication>
#include <QComboBox>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <QToolTip>

namespace {

class FeedbackWindow : public MainWindow {
protected:
    FeedbackWindow() {
        if (window_->width() > desk().width())
            window_->slotSwitchWindowSize();
        window_->slotShowNeurofeedbackDlg();
        auto& screens = control<QComboBox>("SubjectScreenCmBx");
        screens.setCurrentIndex(3);
        Q_EMIT screens.activated(3);
        QCursor::setPos(subject().center());
    }

    static QRect desk() { return QGuiApplication::primaryScreen()->geometry(); }
    static QRect subject() { return QGuiApplication::screens().value(1)->geometry(); }
    NeurofeedbackDlg& dialog() { return control<NeurofeedbackDlg>("NeurofeedbackDlg"); }
    void openAll() {
        messages_.acceptAnything(); // there is no protocol
        dialog().invokeOptionsDlg();
        dialog().onDelayedFeedbackOptions();
        dialog().openDryRun();
    }
    /// Windows on the subject's screen, by class and name; the display alone belongs there.
    static std::string onSubjectsScreen() {
        QCoreApplication::processEvents();
        QStringList found;
        for (const QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->frameGeometry().intersects(subject()))
                found << window->metaObject()->className() + (' ' + window->objectName());
        return found.join(", ").toStdString();
    }
};

constexpr char displayOnly[] = "SubjectDisplay SubjectDisplay";

} // namespace

TEST_F(FeedbackWindow, NothingElseLandsOnTheSubjectsScreen) {
    EXPECT_EQ(onSubjectsScreen(), displayOnly);
    openAll();
    const QList<QWidget*> windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        if (window->isVisible() && qobject_cast<SubjectDisplay*>(window) == nullptr)
            window->move(subject().topLeft() + QPoint(20, 20));
    EXPECT_EQ(onSubjectsScreen(), displayOnly) << "moved";
    for (QComboBox* list : window_->findChildren<QComboBox*>())
        if (list->isVisible()) {
            list->showPopup();
            EXPECT_EQ(onSubjectsScreen(), displayOnly) << list->objectName().toStdString();
            list->hidePopup();
        }
    for (QMenu* menu : window_->findChildren<QMenu*>()) {
        menu->popup(subject().center());
        EXPECT_EQ(onSubjectsScreen(), displayOnly) << menu->title().toStdString();
        menu->close();
    }
    MessageBoxes boxes;
    installMessageHandler(&boxes);
    QToolTip::showText(subject().center(), "what it does", &dialog());
    showModelessWarning("A run goes on.");
    OpenChooser chooser;
    chooseFileToSave(
        "Save Pictures", home_.path(), "Pictures (*.png)", [](const QString&) {}, &chooser);
    QMessageBox withoutParent;
    withoutParent.show();
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(onSubjectsScreen(), displayOnly) << "modal";
        QApplication::activeModalWidget()->close();
    });
    showCritical("It waits.");
    EXPECT_EQ(onSubjectsScreen(), displayOnly);
    installMessageHandler(&messages_);
}

TEST_F(FeedbackWindow, GoesWithTheSettingsFileAndTheProgram) {
    openAll();
    window_->setSettingsFile(home_.path() + "/run-7.vco");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(window_->session().feedback.isOpen());
    EXPECT_EQ(onSubjectsScreen(), "");
    window_->slotShowNeurofeedbackDlg();
    openAll();
    prepare(2, Phase::Recording);
    EXPECT_FALSE(window_->close()) << "the run comes first";
    EXPECT_TRUE(dialog().isVisible());
    runOver();
    window_.reset();
    for (const QWidget* window : QApplication::topLevelWidgets())
        EXPECT_FALSE(window->isVisible()) << window->metaObject()->className();
}
