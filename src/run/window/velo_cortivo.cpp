// The life of the main window: construction, dragging, closing.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo.h"

#include "base/messages.h"
#include "dialogs/appearance.h"
#include "run/window/contrast_list.h"
#include "run/window/main_window_pointer.h"
#include "run/window/message_boxes.h"
#include "run/window/program_dialogs.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

VeloCortivo::VeloCortivo(const StandardFolders& folders, EventPump& pump)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint), session_(pump, *this), pump_(pump),
      folders_(folders) {
    setMainWindow(this);
    setObjectName("VeloCortivo");
    setWindowTitle("Velo-Cortivo");
    setWindowIcon(QIcon(":/images/velo-cortivo-256.png"));
    session_.licencePermits = licencePermits;
    session_.stopTimer = [this] { timer_.stop(); };
    createTitleRow();
    createViewPanels();
    createInputPanel();
    createContrastPanel();
    createMenus();
    wrapToolTips(*this);
    preLoadRoiButton_->setText("Pre-Load ROI");
    preLoadVoiButton_->setText("Pre-Load VOI");
    initDefaultPalettes();
    qApp->installEventFilter(this);
}

VeloCortivo::~VeloCortivo() {
    qApp->removeEventFilter(this);
    documentsLeaving(); // views go before the documents that they show
    setMainWindow(nullptr);
}

void VeloCortivo::initVars() {
    initDefaultPalettes();
    showLogText(QStringLiteral("<body style=\"font-size:%1pt\"> Velo-Cortivo %2<br><br>Looking "
                               "for the settings file...<br></body>")
                    .arg(QString::number(session_.state.logFontSize), VELO_VERSION));
    session_.runButtonState = RunButtonState::Ready;
    setRunButtonState(RunButtonState::Ready);
    toBeginButton_->setEnabled(false);
    toEndButton_->setEnabled(false);
    refreshViewButtons();
    refreshControls();
    connectControls();
    recordButton_->setFocus();
    checkStateInterval_ = 1000;
    timer_.start(checkStateInterval_);
}

void VeloCortivo::closeEvent(QCloseEvent* event) {
    if (runInProgress_) {
        // The volumes measured so far exist nowhere else: they are saved before the program ends.
        endAfterRun_ = true;
        session_.requestStop();
        showLogText(QStringLiteral("<body style=\"font-size:%1pt\"> The run stops with the volume "
                                   "that is awaited now and is saved.<br><br>The program ends "
                                   "after that.<br></body>")
                        .arg(session_.state.logFontSize));
        event->ignore();
        return;
    }
    timer_.stop();
    rememberMaster();
    event->accept();
    QCoreApplication::quit();
}

void VeloCortivo::endIfAsked() {
    // Not at once: the caller is still inside the run.
    if (endAfterRun_)
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
}

void VeloCortivo::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(rect(), skin_);
}

void VeloCortivo::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        dragOffset_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void VeloCortivo::mouseMoveEvent(QMouseEvent* event) {
    if (!dragOffset_ || !(event->buttons() & Qt::LeftButton))
        return;
    move(reachablePosition(screenArea(this), size(),
                           event->globalPosition().toPoint() - *dragOffset_));
    remembered_.windowCentredX = remembered_.windowCentredY = false;
    remembered_.windowX = x();
    remembered_.windowY = y();
}

void VeloCortivo::mouseReleaseEvent(QMouseEvent*) {
    dragOffset_.reset();
}

void VeloCortivo::slotShowLicenseInfoDlg() {
    showLicenceDialog(this);
}

void VeloCortivo::slotShowAboutDlg() {
    showAboutDialog(this);
}
