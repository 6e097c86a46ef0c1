// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/time_course_plot_dialog.h"

#include "base/messages.h"
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "regions/ui/averaging_plot_dialog.h"
#include "regions/ui/session_region.h"
#include "ui_time_course_plot_dialog.h"

#include <QMenu>

namespace {

QFont smaller(QFont font) {
    constexpr double factor = 0.88;
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

/// Opens the menu of a button below it. Of itself a tool button runs an event loop while its menu
/// is open, in which a run would stand still.
class MenuBesideRun : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* button = static_cast<QToolButton*>(watched);
        const bool pressed = event->type() == QEvent::MouseButtonPress ||
                             event->type() == QEvent::MouseButtonDblClick;
        if (!pressed || !button->menu())
            return false;
        button->menu()->popup(button->mapToGlobal(QPoint(0, button->height())));
        return true;
    }
};

} // namespace

TimeCoursePlotDlg::TimeCoursePlotDlg(RunSession& session, RegionPlotSettings& settings,
                                     QWidget* parent)
    : QWidget(parent), session_(session), settings_(settings),
      ui_(std::make_unique<Ui::TimeCoursePlotDlg>()) {
    ui_->setupUi(this);
    connect(ui_->ShowOptionsBtn, &QToolButton::clicked, this,
            &TimeCoursePlotDlg::slotToggleOptions);
    connect(ui_->PercentOp, &QAction::triggered, this, &TimeCoursePlotDlg::unitChanged);
    connect(ui_->GridOp, &QAction::triggered, this, &TimeCoursePlotDlg::showGrid);
    connect(ui_->ProtocolOp, &QAction::triggered, this, &TimeCoursePlotDlg::showProtocol);
    connect(ui_->LegendOp, &QAction::triggered, this, &TimeCoursePlotDlg::refresh);
    connect(ui_->SaveBitmapAction, &QAction::triggered, this, &TimeCoursePlotDlg::slotSaveAsBMP);
    connect(ui_->HelpAction, &QAction::triggered, this, &TimeCoursePlotDlg::slotShowHelpHTML);
    ui_->RegionInfoLbl->setFont(smaller(font()));
    // The row cuts off what has no room, and has a button for it.
    if (auto* more = ui_->PlotOptions->findChild<QToolButton*>("qt_toolbar_ext_button"))
        more->installEventFilter(new MenuBesideRun(more));
    addActions(ui_->PlotOptions->actions());
    setContextMenuPolicy(Qt::ActionsContextMenu);
    wrapToolTips(*this);
    init();
}

TimeCoursePlotDlg::~TimeCoursePlotDlg() = default;

void TimeCoursePlotDlg::init() {
    ui_->PercentOp->setChecked(false);
    for (QAction* option : {ui_->GridOp, ui_->ProtocolOp, ui_->LegendOp})
        option->setChecked(true);
    ui_->ShowOptionsBtn->setChecked(false);
    ui_->PlotOptions->hide();
    commonRange_.reset();
    clearPlot();
}

void TimeCoursePlotDlg::cleanUp() {
    releaseAveragingWindow();
    number_ = -1;
    clearPlot();
}

void TimeCoursePlotDlg::clearPlot() {
    showHeading({}, {});
    ui_->TimeCoursePlotter->setContent({});
    ui_->TimeCoursePlotter->zoomToWhole();
    outdated_ = true;
}

bool TimeCoursePlotDlg::percentShown() const {
    return ui_->PercentOp->isChecked();
}

TimeCourseDisplay TimeCoursePlotDlg::display() const {
    return {percentShown(), settings_.detrended, ui_->ProtocolOp->isChecked(),
            ui_->GridOp->isChecked(), ui_->LegendOp->isChecked()};
}

std::vector<float> TimeCoursePlotDlg::visibleCurve() const {
    const std::optional<PlottedRegion> plotted =
        isVisible() ? regionOfSession(session_, number_) : std::nullopt;
    return plotted ? shownCurve(*plotted, display()) : std::vector<float>();
}

void TimeCoursePlotDlg::refresh() {
    outdated_ = !isVisible();
    if (outdated_)
        return;
    const std::optional<PlottedRegion> plotted = regionOfSession(session_, number_);
    if (!plotted)
        return clearPlot();
    const QtCortivoDoc& document = *session_.functionalDocument;
    showHeading(regionHeading(*plotted), plotted->color);
    ui_->TimeCoursePlotter->setSaveFolder(document.project.targetFolder);
    const PlottedTiming timing = timingOfRegion(session_, number_);
    ui_->TimeCoursePlotter->setContent(
        timeCourseContent(*plotted, timing.protocol, timing.TR, display(), commonRange_));
}

void TimeCoursePlotDlg::showHeading(const QString& text, const QColor& color) {
    if (text == heading_)
        return;
    heading_ = text;
    QLabel* label = ui_->RegionInfoLbl;
    QPalette palette = label->palette();
    if (palette.color(QPalette::WindowText) != color) {
        palette.setColor(QPalette::WindowText, color);
        label->setPalette(palette);
    }
    label->setToolTip(text.isEmpty() ? QString()
                                     : text + "\nRegion, voxels, slice, temporal signal-to-noise "
                                              "ratio (mean over standard deviation)");
    fitHeading();
}

// Whole parts are left out, since half a number would be a wrong one: those in the middle first.
void TimeCoursePlotDlg::fitHeading() {
    QLabel* label = ui_->RegionInfoLbl;
    const QString separator = " · ";
    QStringList parts = heading_.split(separator);
    const auto tooWide = [&] {
        return label->fontMetrics().horizontalAdvance(parts.join(separator)) > label->width();
    };
    while (parts.size() > 1 && tooWide())
        parts.removeAt(std::max(parts.size() - 2, qsizetype(1)));
    label->setText(parts.join(separator));
}

void TimeCoursePlotDlg::slotToggleOptions() {
    ui_->PlotOptions->setVisible(ui_->PlotOptions->isHidden());
    ui_->ShowOptionsBtn->setChecked(!ui_->PlotOptions->isHidden());
}

void TimeCoursePlotDlg::slotSaveAsBMP() {
    ui_->TimeCoursePlotter->slotSaveAsBMP();
}

void TimeCoursePlotDlg::slotShowHelpHTML() {
    openHelpFile(session_.settings.ParadigmHelpFile);
}

void TimeCoursePlotDlg::openAveragingWindow() {
    if (!AveragingWindow) {
        AveragingWindow = new AveragingPlotDlg(session_, settings_, this);
        connect(AveragingWindow, &AveragingPlotDlg::edited, this, &TimeCoursePlotDlg::drawAverages);
    }
    showBeside(*AveragingWindow);
    drawAverages();
}

void TimeCoursePlotDlg::drawAverages() {
    if (!AveragingWindow)
        showModelessWarning("INTERNAL ERROR: Plot dialog not available!");
    else if (!AveragingWindow->draw())
        releaseAveragingWindow();
}

// Deferred, since one of its own controls may have led here.
void TimeCoursePlotDlg::releaseAveragingWindow() {
    if (!AveragingWindow)
        return;
    AveragingWindow->hide();
    AveragingWindow->deleteLater();
    AveragingWindow.clear();
}

void TimeCoursePlotDlg::showEvent(QShowEvent*) {
    if (outdated_)
        refresh();
}

void TimeCoursePlotDlg::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The label has its width once the layout is done.
    layout()->activate();
    fitHeading();
}
