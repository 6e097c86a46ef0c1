// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/averaging_plot_dialog.h"

#include "base/messages.h"
#include "dialogs/appearance.h"
#include "display/plots/plotter.h"
#include "regions/ui/session_region.h"
#include "ui_averaging_controls.h"

#include <QVBoxLayout>
#include <numeric>

AveragingPlotDlg::AveragingPlotDlg(RunSession& session, RegionPlotSettings& settings,
                                   QWidget* parent)
    : Plot2DDlg(parent), session_(session), settings_(settings),
      ui_(std::make_unique<Ui::AveragingControls>()) {
    setObjectName("AveragingWindow");
    setAttribute(Qt::WA_DeleteOnClose);
    setTitle("Event-Related Averaging Plot");
    auto* controls = new QWidget(this);
    ui_->setupUi(controls);
    constexpr int belowThePlot = 1;
    static_cast<QVBoxLayout*>(layout())->insertWidget(belowThePlot, controls);
    listRegions(nrOfRegions(session_));
    showSettings();
    for (QSpinBox* box : controls->findChildren<QSpinBox*>())
        connect(box, &QSpinBox::valueChanged, this, &AveragingPlotDlg::takeControls);
    for (QComboBox* box : controls->findChildren<QComboBox*>())
        connect(box, &QComboBox::currentIndexChanged, this, &AveragingPlotDlg::takeControls);
    connect(ui_->AveragePercentOp, &QCheckBox::toggled, this, &AveragingPlotDlg::takeControls);
    wrapToolTips(*controls);
}

AveragingPlotDlg::~AveragingPlotDlg() = default;

void AveragingPlotDlg::showSettings() {
    const AveragingWindow& window = settings_.averaging;
    ui_->BeforeOnsetSpBx->setValue(window.before);
    ui_->AfterOnsetSpBx->setValue(window.after);
    ui_->BaselineFromSpBx->setValue(window.baselineFrom);
    ui_->BaselineToSpBx->setValue(window.baselineTo);
    ui_->AveragePercentOp->setChecked(window.percent);
    ui_->TimeAxisCmBx->setCurrentIndex(int(settings_.timeAxis));
}

void AveragingPlotDlg::takeControls() {
    AveragingWindow& window = settings_.averaging;
    window.before = ui_->BeforeOnsetSpBx->value();
    window.after = ui_->AfterOnsetSpBx->value();
    window.baselineFrom = ui_->BaselineFromSpBx->value();
    window.baselineTo = std::max(ui_->BaselineToSpBx->value(), window.baselineFrom);
    window.percent = ui_->AveragePercentOp->isChecked();
    const QSignalBlocker blocker(ui_->BaselineToSpBx);
    ui_->BaselineToSpBx->setValue(window.baselineTo);
    settings_.timeAxis = AveragingTimeAxis(ui_->TimeAxisCmBx->currentIndex());
    Q_EMIT edited();
}

// Entry 0 stands for all regions. At first, and when the chosen region is gone, it is the first.
void AveragingPlotDlg::listRegions(int count) {
    QComboBox* box = ui_->AveragedRegionCmBx;
    if (box->count() == count + 1)
        return;
    const QSignalBlocker blocker(box);
    while (box->count() > count + 1)
        box->removeItem(box->count() - 1);
    const bool first = box->count() == 1;
    for (int number = box->count() - 1; number < count; ++number)
        box->addItem(regionName(number));
    if (first && count > 0)
        box->setCurrentIndex(1);
}

std::vector<int> AveragingPlotDlg::chosenRegions() const {
    const int index = ui_->AveragedRegionCmBx->currentIndex();
    if (index > 0)
        return {index - 1};
    std::vector<int> all(size_t(nrOfRegions(session_)));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

bool AveragingPlotDlg::draw() {
    listRegions(nrOfRegions(session_));
    std::vector<PlottedAverages> plotted;
    for (const int number : chosenRegions()) {
        const std::optional<PlottedRegion> region = regionOfSession(session_, number);
        if (!region)
            continue;
        const PlottedTiming timing = timingOfRegion(session_, number);
        PlottedAverages averages{number, {}};
        if (averageTrials(measuredCurve(*region), timing.protocol, timing.TR, settings_.averaging,
                          averages.averages) != AveragingResult::Ok) {
            showModelessWarning("ERROR: Too many trigger points!");
            return false;
        }
        plotted.push_back(std::move(averages));
    }
    const QtCortivoDoc* document = session_.functionalDocument.get();
    const float TR = document ? document->project.TR : 0.0f;
    plotter().setSaveFolder(document ? document->project.targetFolder : QString());
    plotter().setContent(averagingContent(plotted, settings_.averaging,
                                          averagingInterval(settings_.timeAxis, TR), TR));
    return true;
}
