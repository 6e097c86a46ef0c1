// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/saving_progress.h"

#include <QApplication>
#include <QCloseEvent>
#include <QProgressDialog>

namespace {

constexpr QSize boxSize(250, 80);

class SavingBox : public QProgressDialog {
public:
    explicit SavingBox(QWidget* window)
        : QProgressDialog(" Saving Analyzed Data... ", " Cancel ", 0, 100, window) {
        setObjectName("SavingProgressDlg");
        setWindowTitle("Velo-Cortivo");
        disconnect(this, SIGNAL(canceled()), this, SLOT(cancel()));
        setAutoClose(false);
        setAutoReset(false);
        setMinimumDuration(0);
        setWindowModality(Qt::ApplicationModal);
        setFixedSize(boxSize);
        move(window->x() + (window->width() - boxSize.width()) / 2,
             window->y() + window->height() / 3);
    }
    void reject() override {}

protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

class SavingProgress : public ProgressReporter {
public:
    explicit SavingProgress(QWidget* window) : box_(window) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        box_.show();
        setProgress(0);
    }
    ~SavingProgress() override {
        // A message during saving may have restored the cursor.
        if (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
        box_.hide();
    }
    void setProgress(int percent) override { box_.setValue(percent); }

private:
    SavingBox box_;
};

} // namespace

std::unique_ptr<ProgressReporter> openSavingBox(QWidget* window) {
    return std::make_unique<SavingProgress>(window);
}
