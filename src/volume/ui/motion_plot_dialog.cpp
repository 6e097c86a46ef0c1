// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/motion_plot_dialog.h"

#include "dialogs/appearance.h"
#include "dialogs/bitmap_saving.h"
#include "dialogs/dialog_setup.h"
#include "display/plots/plotter.h"
#include "run/document/plotted_volumes.h"
#include "run/protocol/ui/protocol_plot_content.h"
#include "run/session/run_session.h"
#include "volume/ui/timing_strip_content.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

MotionPlotDlg::MotionPlotDlg(RunSession& session, QWidget* parent)
    : QDialog(parent), session_(session), plots_(new QWidget(this)),
      translations_(addPlot("TranslationPlot")), rotations_(addPlot("RotationPlot")),
      displacement_(addPlot("DisplacementPlot")), dvarsPlot_(addPlot("DVARSPlot")),
      times_(addPlot("TimingPlot")), readOut_(new QLabel(this)), timesReadOut_(new QLabel(this)) {
    setObjectName("MotionPlot");
    setWindowTitle("Motion Plot");
    readOut_->setObjectName("MotionReadOutLbl");
    timesReadOut_->setObjectName("TimingReadOutLbl");
    for (QLabel* label : {readOut_, timesReadOut_}) {
        label->setFont(numberFont(font(), 0.9));
        label->setWordWrap(true); // only where the window is narrow
    }
    timesReadOut_->setToolTip(
        "The volume that was done last. What it needed is all of its time but the wait for the "
        "scanner; it is late when it was not done before the next one was due");
    readOut_->setToolTip("The volume that was measured last. Framewise displacement after Power et "
                         "al. 2012, with rotations as arcs on a sphere of 50 mm radius; DVARS is "
                         "the change from one volume to the next in percent of the mean signal");
    layOut();
    prepareDialog(*this);
    resize(640, 690); // beside it the slices and the run button stay visible
    dvarsTimer_.setSingleShot(true);
    connect(&dvarsTimer_, &QTimer::timeout, this, &MotionPlotDlg::refresh);
    session_.listeners.add(*this, ListenerPlace::Plots);
    takeCorrection();
    takeVolumes();
}

Plotter* MotionPlotDlg::addPlot(const char* name) {
    auto* plot = new Plotter(plots_);
    plot->setObjectName(name);
    return plot;
}

void MotionPlotDlg::layOut() {
    auto* quality = new QHBoxLayout;
    quality->addWidget(displacement_, 3);
    quality->addWidget(dvarsPlot_, 2);
    auto* rows = new QVBoxLayout(plots_);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(translations_, 1);
    rows->addWidget(rotations_, 1);
    rows->addLayout(quality, 1);
    rows->addWidget(times_, 1);

    auto* save = new QPushButton("&Save Bitmap...", this);
    save->setObjectName("SaveBtn");
    save->setToolTip("Save all plots as they are shown");
    save->setAutoDefault(false);
    connect(save, &QPushButton::clicked, this, &MotionPlotDlg::slotSaveAsBMP);
    auto* bottom = new QHBoxLayout;
    auto* readOuts = new QVBoxLayout;
    readOuts->addWidget(readOut_);
    readOuts->addWidget(timesReadOut_);
    bottom->addLayout(readOuts, 1);
    bottom->addWidget(save, 0, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(plots_, 1);
    layout->addLayout(bottom);
}

// Kept, as are the volumes, since report and settings change when another settings file is chosen,
// the run does not.
void MotionPlotDlg::takeCorrection() {
    corrected_ = session_.settings.MotionCorrection;
    // The first volume is not aligned to a target of another run, so its parameters say nothing.
    firstDisplaced_ = session_.settings.IntraSessionMotionCorrection ? 2 : 1;
}

void MotionPlotDlg::takeVolumes() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    volumes_ = document ? plottedVolumes(session_.report, *document).measured : 0;
    if (document && document->motion.foundAfterRun) {
        corrected_ = true;
        firstDisplaced_ = 1;
    }
    if (isVisible())
        refresh();
}

void MotionPlotDlg::documentsLeaving() {
    dvarsTimer_.stop();
    dvars_.clear();
    volumes_ = 0;
    drawNothing();
}

void MotionPlotDlg::runPrepared(QtCortivoDoc&) {
    takeCorrection();
    takeVolumes();
}

bool MotionPlotDlg::atStep(VolumeStep step, const VolumeAtHand&) {
    if (step == VolumeStep::Plots)
        takeVolumes();
    return true;
}

// A volume's times are known when it is done.
void MotionPlotDlg::endOfVolume(const VolumeAtHand& hand) {
    if (isVisible())
        drawTimes(hand.document.ledger, int(hand.document.project.volumes.size()));
}

void MotionPlotDlg::loopEnded(QtCortivoDoc&) {
    takeVolumes();
}

void MotionPlotDlg::samplesChanged() {
    dvars_.clear();
    takeVolumes();
    if (isVisible())
        dvarsTimer_.start(0); // DVARS when the phase is over
}

void MotionPlotDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    renew();
}

void MotionPlotDlg::renew() {
    if (session_.phase.isIdle())
        dvars_.clear();
    refresh();
}

void MotionPlotDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    dvarsTimer_.stop();
}

void MotionPlotDlg::computeDVARS() {
    // While they are being changed, volumes don't belong together.
    const QtCortivoDoc* document = session_.functionalDocument.get();
    if (!document || document->multiRunDocument || session_.phase.now() == Phase::PostProcessing)
        return;
    constexpr size_t samplesInOneStep = 16'000'000; // some 20 ms
    const FMRProject& project = document->project;
    const size_t atMost = samplesInOneStep / std::max<size_t>(project.volumes.samplesOfEach(), 1);
    if (!dvars_.update(project.volumes, volumes_, document->mask.voxels,
                       int(std::max<size_t>(atMost, 1))))
        dvarsTimer_.start(0);
}

void MotionPlotDlg::refresh() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    if (!document)
        return drawNothing();
    computeDVARS();
    const FMRProject& project = document->project;
    drawTimes(document->ledger, plottedVolumes(session_.report, *document).planned);
    draw({document->motion, framewiseDisplacements(document->motion, volumes_, firstDisplaced_),
          dvars_.values(), plottedVolumes(session_.report, *document).planned, volumes_,
          protocolBands(document->protocol, project.TR),
          corrected_ ? "From the second volume on" : "This run is without motion correction"});
}

void MotionPlotDlg::drawNothing() {
    const MotionCorrection none;
    draw({none, {}, {}, 0, 0, {}, "No run yet"});
    drawTimes({}, 0);
}

void MotionPlotDlg::draw(const PlottedMotion& plotted) {
    translations_->setContent(translationContent(plotted));
    rotations_->setContent(rotationContent(plotted));
    displacement_->setContent(displacementContent(plotted));
    dvarsPlot_->setContent(dvarsContent(plotted));
    readOut_->setText(motionReadOut(plotted));
}

void MotionPlotDlg::drawTimes(const VolumeLedger& ledger, int planned) {
    times_->setContent(timingStripContent(ledger, planned));
    timesReadOut_->setText(timingReadOut(ledger));
}

void MotionPlotDlg::slotSaveAsBMP() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    saveBitmapAs(plots_->grab().toImage(), document ? document->project.targetFolder : QString());
}

void openMotionPlot(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<MotionPlotDlg*>();
    if (!dialog)
        dialog = new MotionPlotDlg(session, &window);
    else if (dialog->isVisible())
        dialog->renew();
    showBeside(*dialog);
}
