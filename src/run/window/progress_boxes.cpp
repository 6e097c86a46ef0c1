// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/progress_boxes.h"

#include <QApplication>
#include <QCloseEvent>
#include <QProgressDialog>
#include <QPushButton>

namespace {

constexpr QSize boxSize(250, 80);
constexpr QSize postprocessingBoxSize(320, 110);

/// Stays until it is deleted. Whatever would close it is a cancellation, which canceled() tells.
class ProgressBox : public QProgressDialog {
public:
    ProgressBox(QWidget* window, const char* name, const QString& label, const QString& button,
                QSize size)
        : QProgressDialog(label, button, 0, 100, window) {
        setObjectName(name);
        setWindowTitle("Velo-Cortivo");
        disconnect(this, SIGNAL(canceled()), this, SLOT(cancel()));
        setAutoClose(false);
        setAutoReset(false);
        setMinimumDuration(0);
        setWindowModality(Qt::ApplicationModal);
        setFixedSize(size);
        move(window->x() + (window->width() - size.width()) / 2,
             window->y() + window->height() / 3);
    }
    void reject() override { Q_EMIT canceled(); }

protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        Q_EMIT canceled();
    }
};

/// The busy cursor, for as long as it lives.
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

class SavingProgress : public ProgressReporter {
public:
    explicit SavingProgress(QWidget* window)
        : box_(window, "SavingProgressDlg", " Saving Analyzed Data... ", " Cancel ", boxSize) {
        box_.show();
        setProgress(0);
    }
    ~SavingProgress() override { box_.hide(); }
    void setProgress(int percent) override { box_.setValue(percent); }

private:
    BusyCursor cursor_{Qt::WaitCursor};
    ProgressBox box_;
};

class PostprocessingProgress : public ProgressReporter {
public:
    PostprocessingProgress(QWidget* window, EventPump& pump)
        : pump_(pump), box_(window, "PostprocessingProgressDlg", "Post-processing the run...",
                            "Cancel", postprocessingBoxSize) {
        QObject::connect(&box_, &QProgressDialog::canceled, &box_, [this] {
            cancelled_ = true;
            box_.setLabelText("Cancelling...");
        });
        // The Return that chose "OK" in the dialog may repeat itself.
        for (QPushButton* button : box_.findChildren<QPushButton*>())
            button->setAutoDefault(false);
        // No value yet: setting one processes events, and the work has not told anybody that it
        // goes on.
        box_.show();
    }
    ~PostprocessingProgress() override { box_.hide(); }
    void setProgress(int percent) override {
        box_.setValue(percent);
        pump_.processEvents();
    }
    [[nodiscard]] bool cancelled() const override { return cancelled_; }

private:
    EventPump& pump_;
    bool cancelled_ = false;
    BusyCursor cursor_{Qt::BusyCursor};
    ProgressBox box_;
};

} // namespace

std::unique_ptr<ProgressReporter> openSavingBox(QWidget* window) {
    return std::make_unique<SavingProgress>(window);
}

std::unique_ptr<ProgressReporter> openPostprocessingBox(QWidget* window, EventPump& pump) {
    return std::make_unique<PostprocessingProgress>(window, pump);
}
