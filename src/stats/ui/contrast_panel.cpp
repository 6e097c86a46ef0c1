// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ui/contrast_panel.h"

#include "dialogs/number_fields.h"
#include "run/session/run_session.h"
#include "stats/ui/contrast_list.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

/// One row: the label, and a number field of fixed width to its right.
void addNumberRow(QGridLayout* grid, const QString& label, QAbstractSpinBox* box, const char* name,
                  const QString& toolTip) {
    constexpr int width = 104;
    box->setObjectName(name);
    box->setToolTip(toolTip);
    box->setFixedWidth(width);
    box->setAlignment(Qt::AlignRight);
    // Apply a number when it is complete, not digit by digit.
    box->setKeyboardTracking(false);
    auto* text = new QLabel(label, box->parentWidget());
    text->setBuddy(box);
    text->setToolTip(toolTip);
    const int row = grid->rowCount();
    grid->addWidget(text, row, 0);
    grid->addWidget(box, row, 1, Qt::AlignRight);
}

} // namespace

ContrastPanel::ContrastPanel(RunSession& session, QWidget* parent)
    : QGroupBox("Contrasts and maps", parent), session_(session),
      contrasts_([this] { takeContrasts(); }), mapsOfPlugin_(session),
      list_(new ContrastList(this)), conjunction_(new QCheckBox("Conjunction of contrasts", this)),
      pluginMaps_(new QCheckBox("Show plugin maps", this)), threshold_(new ThresholdSpinBox(this)),
      colorMaxThreshold_(new ThresholdSpinBox(this)), clusterSize_(new QSpinBox(this)),
      multiSlice_(new QSpinBox(this)) {
    setObjectName("ContrastBackgroundGrpBx");
    conjunction_->setObjectName("ConjunctionOfContrastsOp");
    conjunction_->setToolTip("Show only voxels in which all selected contrasts agree; needs at "
                             "least two of them");
    pluginMaps_->setObjectName("TogglePluginMapsOp");
    pluginMaps_->setToolTip("Show the maps of the plug-in instead of the contrasts");
    pluginMaps_->hide(); // until a plug-in registers maps
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(0, 1);
    addThresholdRows(grid);
    addSizeRows(grid);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 30, 12, 14);
    layout->setSpacing(10);
    layout->addWidget(list_, 1);
    layout->addWidget(conjunction_);
    layout->addWidget(pluginMaps_);
    layout->addSpacing(4);
    layout->addLayout(grid);
    connectControls();
    fillList();
    session_.listeners.add(*this, ListenerPlace::Views);
}

void ContrastPanel::addThresholdRows(QGridLayout* grid) {
    addNumberRow(grid, "Lower threshold", threshold_, "ThresholdSpBx",
                 "Smallest value of the map that is shown, in units of the map (t, r or F). "
                 "Ctrl+Up and Ctrl+Down change it in steps");
    addNumberRow(grid, "Upper threshold", colorMaxThreshold_, "ColorMaxThresholdSpBx",
                 "Value from which the strongest colour is used, in units of the map");
}

void ContrastPanel::addSizeRows(QGridLayout* grid) {
    clusterSize_->setRange(1, 9999);
    addNumberRow(grid, "Cluster size", clusterSize_, "ClusterSizeSpBx",
                 "Smallest connected area of a slice that is shown, in pixels");
    multiSlice_->setRange(1, 99);
    addNumberRow(grid, "ROI slices", multiSlice_, "MultiSliceROISelectionSpBx",
                 "Number of slices that the selection of a region takes in, around the one that it "
                 "is drawn on");
}

void ContrastPanel::connectControls() {
    connect(threshold_, &QDoubleSpinBox::valueChanged, this, &ContrastPanel::thresholdEdited);
    connect(colorMaxThreshold_, &QDoubleSpinBox::valueChanged, this,
            &ContrastPanel::colorMaxThresholdEdited);
    connect(clusterSize_, &QSpinBox::valueChanged, this, &ContrastPanel::clusterSizeEdited);
    connect(multiSlice_, &QSpinBox::valueChanged, this, &ContrastPanel::multiSliceEdited);
    connect(conjunction_, &QCheckBox::clicked, this, &ContrastPanel::conjunctionClicked);
    connect(pluginMaps_, &QCheckBox::clicked, this, &ContrastPanel::showPluginMapsClicked);
    connectStatistics();
    // Once a number is entered the keys scroll the slices again.
    for (const QAbstractSpinBox* box : findChildren<QAbstractSpinBox*>())
        connect(box->findChild<QLineEdit*>(), &QLineEdit::returnPressed, this,
                &ContrastPanel::numberEntered);
}

void ContrastPanel::connectStatistics() {
    connect(list_, &ContrastList::statisticMenuOpening, this,
            [this] { list_->setStatisticCanChange(session_.mayChangeStatistic()); });
    connect(list_, &ContrastList::statisticChosen, this,
            [this](ShownStatistic statistic, int contrast) {
                if (!session_.changeShownStatistic(statistic, contrast))
                    return;
                refresh();
                Q_EMIT statisticChanged();
            });
    connect(list_, &ContrastList::oneSidedTestingChosen, this,
            [this](bool on) { session_.changeOneSidedTesting(on); });
}

void ContrastPanel::refresh() {
    const QSignalBlocker blockers[] = {QSignalBlocker(threshold_),
                                       QSignalBlocker(colorMaxThreshold_),
                                       QSignalBlocker(clusterSize_), QSignalBlocker(multiSlice_)};
    const OverlayThresholds& thresholds = session_.requests.thresholds;
    threshold_->setValue(double(thresholds.Threshold));
    colorMaxThreshold_->setValue(double(thresholds.ColorMaxThreshold));
    clusterSize_->setValue(thresholds.ClusterSizePixels);
    multiSlice_->setValue(session_.settings.MultiSliceROISelection);
    const QtCortivoDoc* document = session_.functionalDocument.get();
    conjunction_->setChecked(document && document->contrasts.ConjunctionAnalysis);
    list_->showRows();
}

void ContrastPanel::takeThreshold() {
    session_.changeThreshold(float(threshold_->value()));
}

void ContrastPanel::takeColorMaxThreshold() {
    session_.changeColorMaxThreshold(float(colorMaxThreshold_->value()));
}

void ContrastPanel::takeClusterSize() {
    session_.changeClusterSize(clusterSize_->value());
}

void ContrastPanel::takeMultiSliceROISelection() {
    session_.changeMultiSliceROISelection(multiSlice_->value());
}

void ContrastPanel::takeConjunction() {
    const bool wanted = conjunction_->isChecked();
    conjunction_->setChecked(session_.changeConjunction(wanted) && wanted);
}

void ContrastPanel::takeContrasts() {
    session_.contrastsChanged();
    if (session_.functionalDocument->contrasts.shownStatistic != ShownStatistic::T)
        Q_EMIT statisticChanged();
}

void ContrastPanel::takeShowPluginMaps() {
    session_.pluginMaps.show(pluginMaps_->isChecked());
}

void ContrastPanel::fillList() {
    pluginMapsListed_ = session_.requests.pluginMaps.shown;
    if (pluginMapsListed_)
        list_->setRows(&mapsOfPlugin_);
    else
        list_->setRows(&contrasts_);
    conjunction_->setEnabled(!pluginMapsListed_);
}

void ContrastPanel::mapListChanged() {
    const RegisteredPluginMaps& maps = session_.requests.pluginMaps;
    pluginMaps_->setVisible(maps.count() > 0);
    pluginMaps_->setChecked(maps.shown);
    if (maps.shown == pluginMapsListed_) {
        list_->showRows();
        return;
    }
    fillList();
    Q_EMIT statisticChanged();
}

// Also where the upper threshold was raised with the lower one, the box of the lower one shows what
// was set last.
void ContrastPanel::pluginThresholdApplied(float shown) {
    refresh();
    const QSignalBlocker blocker(threshold_);
    threshold_->setValue(double(shown));
}

void ContrastPanel::documentsLeaving() {
    contrasts_.setContrasts(nullptr);
    fillList();
    conjunction_->setChecked(false);
}

void ContrastPanel::runPrepared(QtCortivoDoc& functional) {
    contrasts_.setContrasts(&functional.contrasts);
    fillList();
    refresh();
}

void ContrastPanel::settingsFileChanged() {
    contrasts_.setContrasts(nullptr);
    fillList();
}
