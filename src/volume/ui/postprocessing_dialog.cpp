// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/postprocessing_dialog.h"

#include "base/messages.h"
#include "base/paths.h"
#include "volume/high_pass.h"
#include "volume/postprocessing_names.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume/temporal_smoothing.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>
#include <functional>
#include <limits>

namespace {

constexpr int fieldWidth = 84;    // pixels
constexpr int controlWidth = 104; // pixels
constexpr int dialogWidth = 560;  // pixels
constexpr int nameWidth = 520;    // pixels
constexpr int resultLines = 4;
constexpr int headWidth = 190; // pixels; the same in all groups

QRadioButton* newChoice(const QString& text, const char* name, const QString& toolTip) {
    auto* button = new QRadioButton(text);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    return button;
}

QCheckBox* newOption(const QString& text, const char* name, const QString& toolTip) {
    auto* box = new QCheckBox(text);
    box->setObjectName(name);
    box->setToolTip(toolTip);
    return box;
}

QLineEdit* newNumberField(const char* name, const QString& toolTip) {
    auto* field = new QLineEdit;
    field->setObjectName(name);
    field->setToolTip(toolTip);
    field->setAccessibleName(toolTip);
    field->setFixedWidth(fieldWidth);
    field->setAlignment(Qt::AlignRight);
    return field;
}

QLabel* newLabel(const QString& text, QWidget* buddy = nullptr) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

/// One row: what it is about, then its controls. Of the radio buttons in a row one holds.
void addRow(QGridLayout* grid, QWidget* head, std::initializer_list<QWidget*> controls) {
    const int row = grid->rowCount();
    int column = 0;
    grid->addWidget(head, row, column++);
    auto* group = new QButtonGroup(grid);
    for (QWidget* control : controls) {
        if (auto* choice = qobject_cast<QRadioButton*>(control))
            group->addButton(choice);
        grid->addWidget(control, row, column++);
    }
}

/// No number for a text that is none.
float numberIn(const QLineEdit* field) {
    bool ok = false;
    const float number = field->text().trimmed().toFloat(&ok);
    return ok && std::isfinite(number) ? number : std::numeric_limits<float>::quiet_NaN();
}

QString numberText(float number) {
    return QString::number(double(number));
}

} // namespace

PostprocessingDlg::PostprocessingDlg(const FMRProject& project, int nrOfMeasuredVolumes,
                                     QWidget* parent)
    : QDialog(parent), header_(project), projectPath_(project.projectPath),
      targetFolder_(project.targetFolder), nrOfVolumes_(nrOfMeasuredVolumes) {
    setObjectName("PostprocessingDlg");
    setWindowTitle("Post-Processing");
    setMinimumWidth(dialogWidth);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    auto* run = new QLabel(runText());
    run->setObjectName("m_RunInfo");
    run->setTextFormat(Qt::PlainText);
    run->setWordWrap(true);
    layout->addWidget(run);
    for (QGroupBox* group :
         {createSliceScanTimeGroup(), createSpatialGroup(), createTemporalGroup()})
        layout->addWidget(group);
    statistics_ =
        newOption("&Go on with the statistics of the changed data", "m_GoOnWithStatistics",
                  "Fit the model to the processed volumes and compute all maps again. "
                  "Otherwise the maps stay those of the volumes as they were");
    statistics_->setChecked(true);
    layout->addWidget(statistics_);
    layout->addWidget(createResultRow());

    auto* buttons = new QDialogButtonBox;
    auto* ok = buttons->addButton("OK", QDialogButtonBox::AcceptRole);
    auto* cancel = buttons->addButton("Cancel", QDialogButtonBox::RejectRole);
    ok->setObjectName("OkBtn");
    ok->setToolTip("Process the volumes in memory and save them under the names above");
    ok->setDefault(true);
    cancel->setObjectName("CancelBtn");
    cancel->setToolTip("Leave the run as it is");
    connect(buttons, &QDialogButtonBox::accepted, this, &PostprocessingDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PostprocessingDlg::reject);
    layout->addWidget(buttons);

    setOptions(defaultPostprocessingOptions(header_.NrOfSlices));
    connectControls();
    onChanged();
    sliceScanTime_->setFocus();
}

QGroupBox* PostprocessingDlg::newGroup(const QString& title, const char* name,
                                       const QString& toolTip) {
    auto* group = new QGroupBox(title);
    group->setObjectName(name);
    group->setToolTip(toolTip);
    group->setCheckable(true);
    auto* grid = new QGridLayout(group);
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(6);
    grid->setColumnMinimumWidth(0, headWidth);
    constexpr int controls = 3;
    for (int column = 1; column <= controls; ++column)
        grid->setColumnMinimumWidth(column, controlWidth);
    grid->setColumnStretch(controls + 1, 1);
    return group;
}

QGroupBox* PostprocessingDlg::createSliceScanTimeGroup() {
    sliceScanTime_ =
        newGroup("&Slice scan time correction", "m_SliceScanTimeCorrection",
                 "Shift the time course of each slice to the beginning of the volume. Only right "
                 "with the order in which the scanner measured the slices");
    auto* grid = static_cast<QGridLayout*>(sliceScanTime_->layout());
    ascending_ =
        newChoice("&Ascending", "m_AscendingOrder", "The scanner began with the first slice");
    descending_ =
        newChoice("&Descending", "m_DescendingOrder", "The scanner began with the last slice");
    addRow(grid, newLabel("Direction:"), {ascending_, descending_});

    sequential_ = newChoice("Se&quential", "m_SequentialOrder",
                            "Neighbouring slices were measured one after the other");
    interleaved_ = newChoice("&Interleaved", "m_InterleavedOrder",
                             hasEvenNumberOfSlices()
                                 ? "For an odd number of slices. With an even one the scanner "
                                   "begins with the second slice of the direction"
                                 : "Every other slice, beginning with the first of the direction, "
                                   "then those between");
    interleaved2_ = newChoice("Interleaved &2", "m_Interleaved2Order",
                              "Every other slice, beginning with the second of the direction, then "
                              "those between");
    interleaved_->setEnabled(!hasEvenNumberOfSlices());
    addRow(grid, newLabel("Order:"), {interleaved_, interleaved2_, sequential_});

    cubicSpline_ = newChoice("&Cubic spline", "m_CubicSplineInterpolation",
                             "A smooth curve through all samples of the time course");
    sinc_ = newChoice("Si&nc", "m_SincInterpolation", "Six samples, weighted by a windowed sinc");
    linear_ = newChoice("&Linear", "m_LinearInterpolation", "The two neighbouring samples");
    addRow(grid, newLabel("Interpolation:"), {cubicSpline_, sinc_, linear_});
    sliceOrder_ = newLabel(QString());
    sliceOrder_->setObjectName("m_SliceOrderInfo");
    sliceOrder_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(sliceOrder_, grid->rowCount(), 0, 1, -1);
    return sliceScanTime_;
}

QGroupBox* PostprocessingDlg::createSpatialGroup() {
    spatial_ =
        newGroup("S&patial smoothing", "m_SpatialSmoothing", "Smooth each volume with a Gaussian");
    auto* grid = static_cast<QGridLayout*>(spatial_->layout());
    inSpaceDomain_ = newChoice("Spac&e", "m_SpatialSmoothingInSpaceDomain",
                               "Convolve the samples with the Gaussian");
    inFrequencyDomain_ = newChoice("&Frequency", "m_SpatialSmoothingInFrequencyDomain",
                                   "Multiply the spectrum of the volume");
    addRow(grid, newLabel("Domain:"), {inSpaceDomain_, inFrequencyDomain_});
    in3D_ = newChoice("&3D", "m_SpatialSmoothingIn3D", "Within and across slices");
    in2D_ = newChoice("2D", "m_SpatialSmoothingIn2D", "Within each slice only");
    addRow(grid, newLabel("Dimensions:"), {in3D_, in2D_});
    fwhm_ = newNumberField("m_SpatialSmoothingFWHMValue",
                           "Full width of the Gaussian at half maximum, in the unit beside it");
    gaussInMm_ = newChoice("mm", "m_SpatialGaussInMm", "The width is in millimetres");
    gaussInPixels_ = newChoice("pi&xels", "m_SpatialGaussInPixels",
                               "The width is in pixels, the same number along each axis");
    addRow(grid, newLabel("&Width (FWHM):", fwhm_), {fwhm_, gaussInMm_, gaussInPixels_});
    return spatial_;
}

QGroupBox* PostprocessingDlg::createTemporalGroup() {
    temporal_ = newGroup("&Temporal filters", "m_TemporalFilters",
                         "Filter the time course of each voxel; its mean level stays");
    auto* grid = static_cast<QGridLayout*>(temporal_->layout());
    linearTrend_ = newOption("&Remove linear trend", "m_LinearTrendRemoval",
                             "Take the straight line that fits best out of each time course. The "
                             "high-pass filter includes it");
    addRow(grid, linearTrend_, {});
    highPass_ = newOption("High-pass (GLM-Fourier):", "m_TemporalHighPassFilter",
                          "Take slow drifts out of each time course: sines and cosines of up to "
                          "this many cycles over the run, and the linear trend");
    highPassCycles_ = newNumberField("m_HighPassCycles",
                                     "Pairs of sine and cosine, in cycles over the whole run");
    addRow(grid, highPass_, {highPassCycles_, newLabel("sines/cosines")});
    gaussian_ = newOption("Ga&ussian, width (FWHM):", "m_TemporalGaussianSmoothing",
                          "Smooth each time course with a Gaussian");
    gaussianWidth_ = newNumberField("m_TemporalGaussianWidth",
                                    "Full width of the Gaussian at half maximum, in the unit "
                                    "beside it");
    gaussianInSeconds_ = newChoice("s", "m_TemporalGaussInSeconds", "The width is in seconds");
    gaussianInDataPoints_ =
        newChoice("data p&oints", "m_TemporalGaussInDataPoints", "The width is in volumes");
    addRow(grid, gaussian_, {gaussianWidth_, gaussianInSeconds_, gaussianInDataPoints_});
    return temporal_;
}

QWidget* PostprocessingDlg::createResultRow() {
    result_ = new QLabel;
    result_->setObjectName("m_ResultInfo");
    result_->setTextFormat(Qt::PlainText);
    result_->setWordWrap(true);
    result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    result_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    // Room for the longest text, so that nothing moves while the operator chooses.
    result_->setMinimumHeight(resultLines * result_->fontMetrics().lineSpacing());
    return result_;
}

void PostprocessingDlg::setOptions(const PostprocessingOptions& options) {
    const SliceScanTimeOptions& times = options.sliceScanTime;
    sliceScanTime_->setChecked(times.checked);
    (times.descendingSliceOrder ? descending_ : ascending_)->setChecked(true);
    (times.interleaved2SliceOrder  ? interleaved2_
     : times.interleavedSliceOrder ? interleaved_
                                   : sequential_)
        ->setChecked(true);
    (times.sincInterpolation          ? sinc_
     : times.cubicSplineInterpolation ? cubicSpline_
                                      : linear_)
        ->setChecked(true);

    const SpatialSmoothingOptions& spatial = options.spatial;
    spatial_->setChecked(spatial.checked);
    (spatial.inSpaceDomain ? inSpaceDomain_ : inFrequencyDomain_)->setChecked(true);
    (spatial.in2D ? in2D_ : in3D_)->setChecked(true);
    fwhm_->setText(numberText(spatial.fwhm));
    (spatial.inMillimetres ? gaussInMm_ : gaussInPixels_)->setChecked(true);

    const TemporalOptions& temporal = options.temporal;
    temporal_->setChecked(temporal.checked);
    linearTrend_->setChecked(temporal.linearTrendRemoval);
    highPass_->setChecked(temporal.highPass);
    highPassCycles_->setText(numberText(temporal.highPassCycles));
    gaussian_->setChecked(temporal.gaussian);
    gaussianWidth_->setText(numberText(temporal.gaussianWidth));
    (temporal.gaussianInSeconds ? gaussianInSeconds_ : gaussianInDataPoints_)->setChecked(true);
}

PostprocessingOptions PostprocessingDlg::options() const {
    PostprocessingOptions options;
    SliceScanTimeOptions& times = options.sliceScanTime;
    times.checked = sliceScanTime_->isChecked();
    times.ascendingSliceOrder = ascending_->isChecked();
    times.descendingSliceOrder = descending_->isChecked();
    // With an even number of slices scanners begin with the second one.
    times.interleaved2SliceOrder =
        interleaved2_->isChecked() || (interleaved_->isChecked() && hasEvenNumberOfSlices());
    times.interleavedSliceOrder = interleaved_->isChecked() && !hasEvenNumberOfSlices();
    times.sincInterpolation = sinc_->isChecked();
    times.cubicSplineInterpolation = cubicSpline_->isChecked();

    options.spatial = {spatial_->isChecked(), inSpaceDomain_->isChecked(), in2D_->isChecked(),
                       gaussInMm_->isChecked(), numberIn(fwhm_)};

    TemporalOptions& temporal = options.temporal;
    temporal.checked = temporal_->isChecked();
    temporal.linearTrendRemoval = linearTrend_->isChecked();
    temporal.highPass = highPass_->isChecked();
    temporal.highPassCycles = numberIn(highPassCycles_);
    temporal.gaussian = gaussian_->isChecked();
    temporal.gaussianInSeconds = gaussianInSeconds_->isChecked();
    temporal.gaussianWidth = numberIn(gaussianWidth_);
    return options;
}

bool PostprocessingDlg::recomputeStatistics() const {
    return statistics_->isChecked();
}

void PostprocessingDlg::connectControls() {
    for (QAbstractButton* button : findChildren<QAbstractButton*>())
        connect(button, &QAbstractButton::toggled, this, &PostprocessingDlg::onChanged);
    for (QGroupBox* group : findChildren<QGroupBox*>())
        connect(group, &QGroupBox::toggled, this, &PostprocessingDlg::onChanged);
    for (QLineEdit* field : findChildren<QLineEdit*>())
        connect(field, &QLineEdit::textChanged, this, &PostprocessingDlg::onChanged);
}

// A long name keeps its beginning and its marks, and does not widen the dialog.
QString PostprocessingDlg::shown(const QString& fileName) const {
    return fontMetrics().elidedText(fileName, Qt::ElideMiddle, nameWidth);
}

QString PostprocessingDlg::runText() const {
    const QString sizes = QStringLiteral("%1 volumes of %2 x %3 x %4 voxels, TR %5 ms")
                              .arg(nrOfVolumes_)
                              .arg(header_.ResolutionX)
                              .arg(header_.ResolutionY)
                              .arg(header_.NrOfSlices)
                              .arg(double(header_.TR));
    return shown(paths::fileName(projectPath_)) + '\n' + sizes;
}

// "2, 4, 6, 8 ... 23, 25", to be held against the protocol of the scanner.
QString PostprocessingDlg::sliceOrderText() const {
    constexpr int shownAtStart = 6;
    constexpr int shownAtEnd = 3;
    const SliceScanTimeOptions order = options().sliceScanTime;
    const int slices = header_.NrOfSlices;
    QStringList measured(std::max(slices, 0));
    for (int slice = 0; slice < slices; ++slice)
        measured[timePositionOfSlice(slice, slices, order, 0)] = QString::number(slice + 1);
    QString text = measured.join(", ");
    if (slices > shownAtStart + shownAtEnd)
        text = measured.first(shownAtStart).join(", ") + " ... " +
               measured.last(shownAtEnd).join(", ");
    return QStringLiteral("Slices in the order %1; one every %2 ms of a TR of %3 ms")
        .arg(text)
        .arg(double(header_.InterSliceTime))
        .arg(double(header_.TR));
}

PostprocessingDlg::Fault PostprocessingDlg::findFault() const {
    const PostprocessingOptions chosen = options();
    const TemporalOptions& temporal = chosen.temporal;
    const bool filters =
        temporal.checked && (temporal.linearTrendRemoval || temporal.highPass || temporal.gaussian);
    if (!chosen.sliceScanTime.checked && !chosen.spatial.checked && !filters)
        return {"Nothing is chosen yet: check a group, and in the last one a filter.",
                sliceScanTime_};
    if (chosen.spatial.checked && std::isnan(chosen.spatial.fwhm))
        return {"The width of the spatial smoothing is no number.", fwhm_};
    if (temporal.checked && temporal.highPass && std::isnan(temporal.highPassCycles))
        return {"The number of sines/cosines is no number.", highPassCycles_};
    if (temporal.checked && temporal.gaussian && std::isnan(temporal.gaussianWidth))
        return {"The width of the temporal Gaussian is no number.", gaussianWidth_};
    return {};
}

// What a step would refuse, with its message. A message processes events: a run may begin in them
// and delete the dialog, so nothing of it is touched any more.
QWidget* PostprocessingDlg::findImpossibleStep() const {
    const PostprocessingOptions chosen = options();
    const TemporalOptions& temporal = chosen.temporal;
    struct Check {
        bool chosen;
        QWidget* control;
        std::function<bool()> isPossible;
    };
    const Check checks[] = {
        {chosen.sliceScanTime.checked, sliceScanTime_, [&] { return sliceTimesAreValid(header_); }},
        {chosen.spatial.checked, fwhm_,
         [&] { return runSmoothingIsPossible(header_, chosen.spatial); }},
        {temporal.checked && temporal.highPass, highPassCycles_,
         [&] { return highPassIsPossible(nrOfVolumes_, temporal.nrOfHighPassCycles()); }},
        {temporal.checked && temporal.gaussian, gaussianWidth_,
         [&] { return temporalSmoothingIsPossible(header_, temporal); }},
    };
    for (const Check& check : checks)
        if (check.chosen && !check.isPossible())
            return check.control;
    return nullptr;
}

QString PostprocessingDlg::resultText() const {
    const PostprocessedNames names =
        makePostprocessedNames(paths::fileName(projectPath_), header_.Prefix, options());
    const QString stcName = names.prefix + ".stc";
    const bool replaces = QFileInfo::exists(paths::join(targetFolder_, names.fmrName)) ||
                          QFileInfo::exists(paths::join(targetFolder_, stcName));
    return QStringLiteral("Will be saved as\n%1\n%2%3")
        .arg(shown(names.fmrName), shown(stcName),
             replaces ? "\n(replaces the files of this name)" : QString());
}

void PostprocessingDlg::onChanged() {
    // A group that is not checked has its controls disabled.
    const bool filters = temporal_->isChecked();
    linearTrend_->setEnabled(filters && !highPass_->isChecked());
    highPassCycles_->setEnabled(filters && highPass_->isChecked());
    for (QWidget* control :
         std::initializer_list<QWidget*>{gaussianWidth_, gaussianInSeconds_, gaussianInDataPoints_})
        control->setEnabled(filters && gaussian_->isChecked());
    sliceOrder_->setText(sliceOrderText());
    const QString fault = findFault().text;
    result_->setText(fault.isEmpty() ? resultText() : fault);
}

void PostprocessingDlg::accept() {
    const QPointer<PostprocessingDlg> self(this);
    const Fault fault = findFault();
    if (!fault.text.isEmpty())
        showWarning("ERROR: " + fault.text);
    QWidget* wrong = fault.text.isEmpty() ? findImpossibleStep() : fault.control;
    if (!self)
        return;
    if (!wrong)
        return QDialog::accept();
    // The message lay over the main window, which may have the keyboard now.
    activateWindow();
    wrong->setFocus();
    if (auto* field = qobject_cast<QLineEdit*>(wrong))
        field->selectAll();
}
