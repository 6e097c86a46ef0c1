// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/progress_boxes.h"

#include <QApplication>
#include <QCloseEvent>
#include <QProgressDialog>
#include <QPushButton>

namespace {

/// Stays open until it is deleted. Anything that would close it emits canceled() instead.
class ProgressBox : public QProgressDialog {
public:
    ProgressBox(QWidget* window, const ProgressBoxLook& look)
        : QProgressDialog(look.label, look.button, 0, 100, window) {
        setObjectName(look.objectName);
        setWindowTitle("Velo-Cortivo");
        disconnect(this, SIGNAL(canceled()), this, SLOT(cancel()));
        setAutoClose(false);
        setAutoReset(false);
        setMinimumDuration(0);
        setWindowModality(Qt::ApplicationModal);
        setFixedSize(look.size);
        move(window->x() + (window->width() - width()) / 2, window->y() + window->height() / 3);
    }
    void reject() override { Q_EMIT canceled(); }

protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        Q_EMIT canceled();
    }
};

/// Sets the busy cursor for its lifetime.
class BusyCursor {
public:
    explicit BusyCursor(Qt::CursorShape shape) { QApplication::setOverrideCursor(shape); }
    ~BusyCursor() {
        // A message meanwhile may have restored the cursor.
        if (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

class BoxedProgress : public ProgressReporter {
public:
    BoxedProgress(QWidget* window, const ProgressBoxLook& look) : box_(window, look) {
        box_.show();
        setProgress(0);
    }
    ~BoxedProgress() override { box_.hide(); }
    void setProgress(int percent) override { box_.setValue(percent); }

private:
    BusyCursor cursor_{Qt::WaitCursor};
    ProgressBox box_;
};

class CancellableProgress : public ProgressReporter {
public:
    CancellableProgress(QWidget* window, const ProgressBoxLook& look, EventPump& pump)
        : pump_(pump), box_(window, look) {
        QObject::connect(&box_, &QProgressDialog::canceled, &box_, [this] {
            cancelled_ = true;
            box_.setLabelText("Cancelling...");
        });
        // The Return key that chose "OK" in the dialog may auto-repeat.
        for (QPushButton* button : box_.findChildren<QPushButton*>())
            button->setAutoDefault(false);
        // No value yet: setting one processes events, before the session's phase says that work is
        // going on.
        box_.show();
    }
    ~CancellableProgress() override { box_.hide(); }
    void setProgress(int percent) override {
        box_.setValue(percent);
        pump_.processEvents();
    }
    /// A request to end the program may have come before the box opened.
    [[nodiscard]] bool cancelled() const override { return cancelled_ || pump_.waitsGivenUp(); }

private:
    EventPump& pump_;
    bool cancelled_ = false;
    BusyCursor cursor_{Qt::BusyCursor};
    ProgressBox box_;
};

} // namespace

std::unique_ptr<ProgressReporter> openProgressBox(QWidget* window, const ProgressBoxLook& look) {
    return std::make_unique<BoxedProgress>(window, look);
}

std::unique_ptr<ProgressReporter>
openCancellableProgressBox(QWidget* window, const ProgressBoxLook& look, EventPump& pump) {
    return std::make_unique<CancellableProgress>(window, look, pump);
}
