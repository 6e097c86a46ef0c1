// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/region_slot.h"

#include "regions/ui/beta_plot.h"
#include "regions/ui/time_course_plot_dialog.h"
#include "run/session/session_multi_run.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QScrollBar>

RegionSlot::RegionSlot(RunSession& session, RegionPlotSettings& settings, int slotNumber,
                       QWidget* parent)
    : QWidget(parent), slotNumber_(slotNumber), settings_(settings),
      plots_(new QBoxLayout(QBoxLayout::LeftToRight)),
      timeCourse_(new TimeCoursePlotDlg(session, settings, this)),
      betas_(new BetaPlot(session, settings, this)) {
    setObjectName(QString("RegionSlot%1").arg(slotNumber));
    setWindowTitle(timeCourse_->windowTitle());
    timeCourse_->setObjectName(QString("TimeCourse%1").arg(slotNumber));
    betas_->setObjectName(QString("BetaPlot%1").arg(slotNumber));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(plots_, 1);
    plots_->setSpacing(4);
    plots_->addWidget(timeCourse_, 5);
    plots_->addWidget(betas_, 3);
    setRegion(-1);
}

QScrollBar* RegionSlot::addRunChoice() {
    const QString name = QString("MultiRunTC%1").arg(slotNumber_);
    runFile_ = new QLineEdit(this);
    runFile_->setObjectName(name);
    runFile_->setReadOnly(true);
    runFile_->setToolTip("The run that the plots show");
    runBar_ = new QScrollBar(Qt::Horizontal, this);
    runBar_->setObjectName(name + "ScrollBar");
    runBar_->setToolTip("Choose the run that the plots show");
    auto* row = new QHBoxLayout;
    row->addWidget(runFile_, 1);
    row->addWidget(runBar_, 1);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    showRunChoice({});
    return runBar_;
}

void RegionSlot::showRunChoice(const std::optional<PlottedRunChoice>& choice) {
    runFile_->setVisible(choice.has_value());
    runBar_->setVisible(choice.has_value());
    if (!choice)
        return;
    runFile_->setText(choice->fileName);
    const QSignalBlocker blocker(runBar_);
    runBar_->setRange(-1, choice->nrOfRuns);
    runBar_->setPageStep(1);
    runBar_->setValue(choice->value);
}

void RegionSlot::setRegion(int number) {
    betas_->setRegion(number);
    if (number < 0)
        timeCourse_->cleanUp();
    else
        timeCourse_->setRegion(number);
    showPlots();
}

void RegionSlot::showPlots() {
    const bool used = timeCourse_->region() >= 0;
    timeCourse_->setVisible(used && settings_.shown != ShownPlots::Betas);
    betas_->setVisible(used && settings_.shown != ShownPlots::TimeCourses);
}

void RegionSlot::refresh() {
    timeCourse_->refresh();
    betas_->refresh();
}

void RegionSlot::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    plots_->setDirection(width() > height() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}
