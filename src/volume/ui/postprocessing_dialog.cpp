// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/postprocessing_dialog.h"

#include "base/messages.h"
#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "dialogs/number_fields.h"
#include "dialogs/progress_boxes.h"
#include "run/session/run_session.h"
#include "ui_postprocessing_dialog.h"
#include "volume/postprocessing_names.h"

#include <QPointer>

namespace {

constexpr int nameLength = 88; // characters of a file name that is shown
constexpr int resultLines = 4;

} // namespace

PostprocessingDlg::PostprocessingDlg(const FMRProject& project, int nrOfMeasuredVolumes,
                                     QWidget* parent)
    : EditDialog(parent), ui_(std::make_unique<Ui::PostprocessingDlg>()), header_(project),
      projectPath_(project.projectPath), targetFolder_(project.targetFolder),
      nrOfVolumes_(nrOfMeasuredVolumes) {
    ui_->setupUi(this);
    ui_->m_RunInfo->setText(shown(paths::fileName(projectPath_)) + '\n' +
                            runSizeText(header_, nrOfVolumes_));
    // Room for the longest text, so that nothing moves while the operator chooses.
    ui_->m_ResultInfo->setMinimumHeight(resultLines * fontMetrics().lineSpacing());
    ui_->m_MotionCorrection->setEnabled(nrOfVolumes_ > 1);
    ui_->m_MotionTarget->setMaximum(std::max(nrOfVolumes_, 1));
    setOptions(defaultPostprocessingOptions(header_.NrOfSlices));
    for (QAbstractButton* button : findChildren<QAbstractButton*>())
        connect(button, &QAbstractButton::toggled, this, &PostprocessingDlg::onChanged);
    for (QGroupBox* group : findChildren<QGroupBox*>())
        connect(group, &QGroupBox::toggled, this, &PostprocessingDlg::onChanged);
    for (QLineEdit* field : findChildren<QLineEdit*>())
        connect(field, &QLineEdit::textChanged, this, &PostprocessingDlg::onChanged);
    connect(ui_->m_MotionMethod, &QComboBox::currentIndexChanged, this,
            &PostprocessingDlg::onChanged);
    connect(ui_->m_MotionTarget, &QSpinBox::valueChanged, this, &PostprocessingDlg::onChanged);
    setUpEditing();
    onChanged();
    ui_->m_SliceScanTimeCorrection->setFocus();
}

PostprocessingDlg::~PostprocessingDlg() = default;

// Deferred, since a message of the dialog may be open.
void PostprocessingDlg::leave() {
    stopListening();
    hide();
    deleteLater();
}

void PostprocessingDlg::setOptions(const PostprocessingOptions& options) {
    const SliceScanTimeOptions& times = options.sliceScanTime;
    ui_->m_SliceScanTimeCorrection->setChecked(times.checked);
    (times.descendingSliceOrder ? ui_->m_DescendingOrder : ui_->m_AscendingOrder)->setChecked(true);
    (times.measuredTimes            ? ui_->m_MeasuredOrder
     : times.interleaved2SliceOrder ? ui_->m_Interleaved2Order
     : times.interleavedSliceOrder  ? ui_->m_InterleavedOrder
                                    : ui_->m_SequentialOrder)
        ->setChecked(true);
    (times.sincInterpolation          ? ui_->m_SincInterpolation
     : times.cubicSplineInterpolation ? ui_->m_CubicSplineInterpolation
                                      : ui_->m_LinearInterpolation)
        ->setChecked(true);

    const RunMotionOptions& motion = options.motion;
    ui_->m_MotionCorrection->setChecked(motion.checked);
    ui_->m_MotionMethod->setCurrentIndex(int(motion.method));
    ui_->m_MotionTarget->setValue(motion.targetVolume + 1);

    const SpatialSmoothingOptions& spatial = options.spatial;
    ui_->m_SpatialSmoothing->setChecked(spatial.checked);
    (spatial.inSpaceDomain ? ui_->m_SpatialSmoothingInSpaceDomain
                           : ui_->m_SpatialSmoothingInFrequencyDomain)
        ->setChecked(true);
    (spatial.in2D ? ui_->m_SpatialSmoothingIn2D : ui_->m_SpatialSmoothingIn3D)->setChecked(true);
    showNumber(*ui_->m_SpatialSmoothingFWHMValue, double(spatial.fwhm));
    (spatial.inMillimetres ? ui_->m_SpatialGaussInMm : ui_->m_SpatialGaussInPixels)
        ->setChecked(true);

    const TemporalOptions& temporal = options.temporal;
    ui_->m_TemporalFilters->setChecked(temporal.checked);
    ui_->m_LinearTrendRemoval->setChecked(temporal.linearTrendRemoval);
    ui_->m_TemporalHighPassFilter->setChecked(temporal.highPass);
    showNumber(*ui_->m_HighPassCycles, double(temporal.highPassCycles));
    ui_->m_TemporalGaussianSmoothing->setChecked(temporal.gaussian);
    showNumber(*ui_->m_TemporalGaussianWidth, double(temporal.gaussianWidth));
    (temporal.gaussianInSeconds ? ui_->m_TemporalGaussInSeconds : ui_->m_TemporalGaussInDataPoints)
        ->setChecked(true);
}

PostprocessingOptions PostprocessingDlg::options() const {
    PostprocessingOptions options;
    SliceScanTimeOptions& times = options.sliceScanTime;
    times.checked = ui_->m_SliceScanTimeCorrection->isChecked();
    times.ascendingSliceOrder = ui_->m_AscendingOrder->isChecked();
    times.descendingSliceOrder = ui_->m_DescendingOrder->isChecked();
    times.interleavedSliceOrder = ui_->m_InterleavedOrder->isChecked();
    times.interleaved2SliceOrder = ui_->m_Interleaved2Order->isChecked();
    times.measuredTimes = ui_->m_MeasuredOrder->isChecked();
    times.sincInterpolation = ui_->m_SincInterpolation->isChecked();
    times.cubicSplineInterpolation = ui_->m_CubicSplineInterpolation->isChecked();
    times = withAllowedPattern(times, header_.NrOfSlices);

    // The entries are in the order of the methods.
    options.motion = {ui_->m_MotionCorrection->isChecked(),
                      MotionMethod(ui_->m_MotionMethod->currentIndex()),
                      ui_->m_MotionTarget->value() - 1};

    options.spatial = {
        ui_->m_SpatialSmoothing->isChecked(), ui_->m_SpatialSmoothingInSpaceDomain->isChecked(),
        ui_->m_SpatialSmoothingIn2D->isChecked(), ui_->m_SpatialGaussInMm->isChecked(),
        float(numberIn(*ui_->m_SpatialSmoothingFWHMValue))};

    TemporalOptions& temporal = options.temporal;
    temporal.checked = ui_->m_TemporalFilters->isChecked();
    temporal.linearTrendRemoval = ui_->m_LinearTrendRemoval->isChecked();
    temporal.highPass = ui_->m_TemporalHighPassFilter->isChecked();
    temporal.highPassCycles = float(numberIn(*ui_->m_HighPassCycles));
    temporal.gaussian = ui_->m_TemporalGaussianSmoothing->isChecked();
    temporal.gaussianInSeconds = ui_->m_TemporalGaussInSeconds->isChecked();
    temporal.gaussianWidth = float(numberIn(*ui_->m_TemporalGaussianWidth));
    return options;
}

bool PostprocessingDlg::recomputeStatistics() const {
    return ui_->m_GoOnWithStatistics->isChecked();
}

// Elided in the middle: the marks at the end stay visible, and the dialog is not widened.
QString PostprocessingDlg::shown(const QString& fileName) const {
    return fontMetrics().elidedText(fileName, Qt::ElideMiddle,
                                    nameLength * fontMetrics().averageCharWidth());
}

QString PostprocessingDlg::resultText() const {
    const PostprocessedFiles files =
        postprocessedFiles(projectPath_, header_.Prefix, targetFolder_, options());
    return QStringLiteral("Will be saved as\n%1\n%2%3")
        .arg(shown(files.fmrName), shown(files.stcName),
             files.replaceOthers ? "\n(replaces the files of this name)" : QString());
}

void PostprocessingDlg::onChanged() {
    const PostprocessingOptions chosen = options();
    const AvailableChoices available = availableChoices(chosen, header_);
    ui_->m_AscendingOrder->setEnabled(available.direction);
    ui_->m_DescendingOrder->setEnabled(available.direction);
    ui_->m_InterleavedOrder->setEnabled(available.interleaved);
    ui_->m_MeasuredOrder->setEnabled(available.measuredTimes);
    ui_->m_LinearTrendRemoval->setEnabled(available.linearTrend);
    ui_->m_HighPassCycles->setEnabled(available.highPassCycles);
    ui_->m_TemporalGaussianWidth->setEnabled(available.gaussianWidth);
    ui_->m_TemporalGaussInSeconds->setEnabled(available.gaussianWidth);
    ui_->m_TemporalGaussInDataPoints->setEnabled(available.gaussianWidth);
    ui_->m_SliceOrderInfo->setText(sliceOrderText(header_, chosen.sliceScanTime));
    const QString unfinished = findUnfinishedChoice(chosen).text;
    ui_->m_ResultInfo->setText(unfinished.isEmpty() ? resultText() : unfinished);
}

QWidget* PostprocessingDlg::controlOf(PostprocessingChoice choice) const {
    switch (choice) {
    case PostprocessingChoice::None:
        break;
    case PostprocessingChoice::SliceScanTime:
        return ui_->m_SliceScanTimeCorrection;
    case PostprocessingChoice::MotionTarget:
        return ui_->m_MotionTarget;
    case PostprocessingChoice::SpatialWidth:
        return ui_->m_SpatialSmoothingFWHMValue;
    case PostprocessingChoice::HighPassCycles:
        return ui_->m_HighPassCycles;
    case PostprocessingChoice::TemporalWidth:
        return ui_->m_TemporalGaussianWidth;
    }
    return nullptr;
}

bool PostprocessingDlg::apply() {
    // A message processes events: a run may begin in them and delete the dialog.
    const QPointer<PostprocessingDlg> self(this);
    const PostprocessingOptions chosen = options();
    const UnfinishedChoice unfinished = findUnfinishedChoice(chosen);
    PostprocessingChoice wrong = unfinished.choice;
    if (wrong != PostprocessingChoice::None)
        showWarning("ERROR: " + unfinished.text);
    else
        wrong = findImpossibleStep(FMRHeader(header_), nrOfVolumes_, chosen);
    if (wrong == PostprocessingChoice::None)
        return true;
    if (self)
        returnToControl(*controlOf(wrong));
    return false;
}

void openPostprocessingDialog(RunSession& session, EventPump& pump, QWidget& window) {
    const int volumes = session.volumesForPostprocessing();
    if (volumes == 0)
        return;
    delete window.findChild<PostprocessingDlg*>();
    auto* dialog = new PostprocessingDlg(session.functionalDocument->project, volumes, &window);
    session.listeners.add(*dialog, ListenerPlace::Dialogs);
    QObject::connect(dialog, &QDialog::rejected, dialog, &QObject::deleteLater);
    QObject::connect(dialog, &QDialog::accepted, &window, [&session, &pump, &window, dialog] {
        const auto progress = openCancellableProgressBox(
            &window, {"PostprocessingProgressDlg", "Post-processing the run..."}, pump);
        session.postprocess(dialog->options(), dialog->recomputeStatistics(), *progress);
    });
    // Returns at once: auto-start may begin a run, which closes the dialog.
    dialog->open();
}
