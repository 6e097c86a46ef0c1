// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/time_courses_container.h"

#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "regions/ui/averaging_plot_dialog.h"
#include "regions/ui/region_slot.h"
#include "regions/ui/session_region.h"
#include "regions/ui/time_course_plot_dialog.h"
#include "ui_tc_container_options.h"
#include "ui_time_courses_container.h"

#include <QGridLayout>
#include <QScrollBar>

TimeCoursesContainer::TimeCoursesContainer(RunSession& session, QWidget* parent)
    : QDockWidget("ROI Time Courses", parent), session_(session),
      ui_(std::make_unique<Ui::TimeCoursesContents>()) {
    setObjectName("TimeCoursesContainer");
    // A region that is made or loaded must not take the keyboard from the slices.
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* contents = new QWidget(this);
    ui_->setupUi(contents);
    setWidget(contents);
    for (size_t i = 0; i < slots_.size(); ++i) {
        slots_[i] = new RegionSlot(session_, settings_, int(i) + 1, ui_->Slots);
        connect(slots_[i]->addRunChoice(), &QScrollBar::valueChanged, this,
                [this, i](int value) { Q_EMIT runChosen(int(i), value); });
        connect(&slots_[i]->timeCourse(), &TimeCoursePlotDlg::unitChanged, this,
                &TimeCoursesContainer::refreshPlots);
    }
    connectControls();
    wrapToolTips(*contents);
    assignRegions(0);
    hide();
    session_.listeners.add(*this, ListenerPlace::Plots);
}

TimeCoursesContainer::~TimeCoursesContainer() = default;

void TimeCoursesContainer::connectControls() {
    connect(this, &QDockWidget::topLevelChanged, this, [this](bool floating) {
        constexpr QSize comfortable(700, 300);
        if (!floating)
            return;
        resize(size().expandedTo(comfortable));
        keepOnScreen(*this);
    });
    connect(ui_->NrOfRowsSpBx, &QSpinBox::valueChanged, this,
            &TimeCoursesContainer::onNrOfRowsChanged);
    connect(ui_->ShowTCsBtn, &QToolButton::clicked, this, &TimeCoursesContainer::onShowOnlyTCs);
    connect(ui_->ShowBetasBtn, &QToolButton::clicked, this, &TimeCoursesContainer::onShowOnlyBetas);
    connect(ui_->ShowBothBtn, &QToolButton::clicked, this,
            &TimeCoursesContainer::onShowTCsAndBetas);
    connect(ui_->AverageBtn, &QToolButton::clicked, this, &TimeCoursesContainer::onShowAverages);
    connect(ui_->OptionsBtn, &QToolButton::clicked, this, &TimeCoursesContainer::onOptions);
}

void TimeCoursesContainer::showContainer() {
    show();
    raise();
    if (isFloating())
        keepOnScreen(*this);
    for (RegionSlot* window : floating_)
        window->show();
}

void TimeCoursesContainer::setEpochBased(bool on) {
    settings_.averaging.epochBased = on;
    refreshAverages();
}

void TimeCoursesContainer::setDetrended(bool on) {
    settings_.detrended = on;
    refreshPlots();
}

void TimeCoursesContainer::documentsLeaving() {
    assignRegions(0);
}

void TimeCoursesContainer::runPrepared(QtCortivoDoc& functional) {
    assignRegions(functional.regions.count());
}

void TimeCoursesContainer::regionsChanged(QtCortivoDoc& functional) {
    assignRegions(functional.regions.count());
}

bool TimeCoursesContainer::atStep(VolumeStep step, const VolumeAtHand&) {
    if (step == VolumeStep::Plots)
        refreshPlots();
    return true;
}

void TimeCoursesContainer::assignRegions(int count) {
    const bool more = count > nrOfRegions_;
    nrOfRegions_ = count;
    for (size_t i = 0; i < slots_.size(); ++i)
        slots_[i]->setRegion(int(i) < count ? int(i) : -1);
    resizeFloating(std::max(count - fixedSlots, 0));
    arrange();
    if (more)
        show();
    refreshPlots();
}

void TimeCoursesContainer::resizeFloating(int count) {
    while (int(floating_.size()) > count) {
        // Deferred, since one of its own controls may have led here.
        floating_.back()->hide();
        floating_.back()->deleteLater();
        floating_.pop_back();
    }
    while (int(floating_.size()) < count) {
        const int number = fixedSlots + int(floating_.size());
        auto* window = new RegionSlot(session_, settings_, number + 1, this);
        connect(&window->timeCourse(), &TimeCoursePlotDlg::unitChanged, this,
                &TimeCoursesContainer::refreshPlots);
        floating_.push_back(window);
        window->setRegion(number);
        placeFloating(*window, number);
    }
}

void TimeCoursesContainer::placeFloating(RegionSlot& window, int number) {
    constexpr QSize size(272, 282);
    window.setWindowFlags(Qt::Dialog);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.setContentsMargins(6, 6, 6, 6);
    window.resize(size);
    const QWidget* main = parentWidget() ? parentWidget()->window() : window.window();
    window.move(
        placeBeside(screenArea(main), main->geometry(), size + windowFrame, number - fixedSlots));
    window.show();
    keepOnScreen(window);
}

std::vector<RegionSlot*> TimeCoursesContainer::usedSlots() const {
    const auto fixed = size_t(std::min(nrOfRegions_, fixedSlots));
    std::vector<RegionSlot*> used(slots_.begin(), slots_.begin() + std::ptrdiff_t(fixed));
    used.insert(used.end(), floating_.begin(), floating_.end());
    return used;
}

void TimeCoursesContainer::arrange() {
    QGridLayout* grid = ui_->SlotsLayout;
    const int used = std::min(nrOfRegions_, fixedSlots);
    const int rows = std::min(ui_->NrOfRowsSpBx->value(), std::max(used, 1));
    const int columns = (used + rows - 1) / rows;
    for (int i = 0; i < fixedSlots; ++i) {
        RegionSlot* slot = slots_[size_t(i)];
        grid->removeWidget(slot);
        grid->setColumnStretch(i, i < columns ? 1 : 0);
        grid->setRowStretch(i, i < rows ? 1 : 0);
        if (i < used)
            grid->addWidget(slot, i / columns, i % columns);
        slot->setVisible(i < used);
    }
    ui_->SlotsArea->setVisible(used > 0);
    ui_->NoRegionsLbl->setVisible(used == 0);
    ui_->AverageBtn->setEnabled(used > 0);
}

void TimeCoursesContainer::onNrOfRowsChanged(int new_nrows) {
    ui_->NrOfRowsSpBx->setValue(new_nrows);
    arrange();
}

void TimeCoursesContainer::showPlots(ShownPlots shown) {
    settings_.shown = shown;
    QToolButton* buttons[] = {ui_->ShowTCsBtn, ui_->ShowBetasBtn, ui_->ShowBothBtn};
    buttons[int(shown)]->setChecked(true); // and no other
    for (RegionSlot* slot : usedSlots())
        slot->showPlots();
    refreshPlots();
}

void TimeCoursesContainer::refreshPlots() {
    findCommonRanges();
    for (RegionSlot* slot : usedSlots())
        slot->refresh();
    for (size_t i = 0; i < slots_.size(); ++i)
        slots_[i]->showRunChoice(session_.multiRun.choice(int(i)));
    refreshAverages();
}

// Plots in percent share one range, those in the units of the data another.
void TimeCoursesContainer::findCommonRanges() {
    std::array<std::vector<std::vector<float>>, 2> curves;
    if (settings_.commonTimeCourseScale)
        for (RegionSlot* slot : usedSlots())
            curves[slot->timeCourse().percentShown()].push_back(slot->timeCourse().visibleCurve());
    for (RegionSlot* slot : usedSlots())
        slot->timeCourse().setCommonRange(roundedRange(curves[slot->timeCourse().percentShown()]));
}

void TimeCoursesContainer::onShowAverages() {
    slots_[0]->timeCourse().openAveragingWindow();
}

void TimeCoursesContainer::refreshAverages() {
    if (slots_[0]->timeCourse().AveragingWindow)
        slots_[0]->timeCourse().drawAverages();
}

void TimeCoursesContainer::onOptions() {
    if (!options_)
        createOptions();
    showInFront(*options_);
}

void TimeCoursesContainer::createOptions() {
    options_ = new QDialog(this);
    optionsUi_ = std::make_unique<Ui::TCContainerOptionsDlg>();
    optionsUi_->setupUi(options_);
    const auto onClick = [this](QAbstractButton* button, void (TimeCoursesContainer::*slot)()) {
        connect(button, &QAbstractButton::clicked, this, slot);
    };
    onClick(optionsUi_->IndividualBetaScalingOp,
            &TimeCoursesContainer::onUseIndividualScalingForBetaPlots);
    onClick(optionsUi_->CommonBetaScalingOp, &TimeCoursesContainer::onUseCommonScalingForBetaPlots);
    onClick(optionsUi_->IndividualTCScalingOp,
            &TimeCoursesContainer::onUseIndividualScalingForTCPlots);
    onClick(optionsUi_->CommonTCScalingOp, &TimeCoursesContainer::onUseCommonScalingForTCPlots);
    onClick(optionsUi_->CloseOptionsBtn, &TimeCoursesContainer::onCloseOptionsDlg);
    connect(optionsUi_->MinValueSpBx, &QDoubleSpinBox::valueChanged, this,
            &TimeCoursesContainer::onChangeMinValSpBx);
    connect(optionsUi_->MaxValueSpBx, &QDoubleSpinBox::valueChanged, this,
            &TimeCoursesContainer::onChangeMaxValSpBx);
    prepareDialog(*options_);
    showOptions();
}

void TimeCoursesContainer::showOptions() {
    if (!options_)
        return;
    const bool common = settings_.commonBetaScale;
    (common ? optionsUi_->CommonBetaScalingOp : optionsUi_->IndividualBetaScalingOp)
        ->setChecked(true);
    (settings_.commonTimeCourseScale ? optionsUi_->CommonTCScalingOp
                                     : optionsUi_->IndividualTCScalingOp)
        ->setChecked(true);
    const QSignalBlocker minimum(optionsUi_->MinValueSpBx);
    const QSignalBlocker maximum(optionsUi_->MaxValueSpBx);
    optionsUi_->MinValueSpBx->setValue(settings_.betaRange.from);
    optionsUi_->MaxValueSpBx->setValue(settings_.betaRange.to);
    optionsUi_->MinValueSpBx->setEnabled(common);
    optionsUi_->MaxValueSpBx->setEnabled(common);
}

void TimeCoursesContainer::onCloseOptionsDlg() {
    if (options_)
        options_->hide();
}

void TimeCoursesContainer::settingsEdited() {
    showOptions();
    refreshPlots();
}

void TimeCoursesContainer::onUseIndividualScalingForBetaPlots() {
    settings_.commonBetaScale = false;
    settingsEdited();
}

void TimeCoursesContainer::onUseCommonScalingForBetaPlots() {
    settings_.commonBetaScale = true;
    settingsEdited();
}

void TimeCoursesContainer::onUseIndividualScalingForTCPlots() {
    settings_.commonTimeCourseScale = false;
    settingsEdited();
}

void TimeCoursesContainer::onUseCommonScalingForTCPlots() {
    settings_.commonTimeCourseScale = true;
    settingsEdited();
}

// The other end moves along, so that there is always a range.
void TimeCoursesContainer::onChangeMinValSpBx(double new_min_val) {
    settings_.betaRange.from = new_min_val;
    settings_.betaRange.to = std::max(settings_.betaRange.to, new_min_val + smallestRange);
    settingsEdited();
}

void TimeCoursesContainer::onChangeMaxValSpBx(double new_max_val) {
    settings_.betaRange.to = new_max_val;
    settings_.betaRange.from = std::min(settings_.betaRange.from, new_max_val - smallestRange);
    settingsEdited();
}
