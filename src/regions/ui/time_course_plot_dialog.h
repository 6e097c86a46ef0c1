// The time course of a region against the protocol.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_settings.h"

#include <QPointer>
#include <QWidget>
#include <memory>

class AveragingPlotDlg;
class RunSession;

namespace Ui {
class TimeCoursePlotDlg;
}

/// Shows a region of the session by its number, and owns nothing of it. Hidden, it only remembers
/// that it is outdated. The plot of the first region makes the window of the event-related average.
class TimeCoursePlotDlg : public QWidget {
    Q_OBJECT

public:
    /// The settings live longer than the plot.
    TimeCoursePlotDlg(RunSession& session, RegionPlotSettings& settings, QWidget* parent);
    ~TimeCoursePlotDlg() override;

    /// The number of the region, from 0; -1 for none.
    void setRegion(int number) { number_ = number; }
    [[nodiscard]] int region() const { return number_; }
    void refresh();

    [[nodiscard]] bool percentShown() const;
    /// The curve as it would be shown now; empty while the plot is hidden or has no region.
    [[nodiscard]] std::vector<float> visibleCurve() const;
    /// The range of values to show at the next refresh; nothing for that of the curve.
    void setCommonRange(const std::optional<PlotRange>& range) { commonRange_ = range; }

    /// Opens the window of the event-related average, or raises it.
    void openAveragingWindow();
    /// Draws the averages of the regions of the session. Without the window, or with too many
    /// trials, a message is shown and the window released.
    void drawAverages();
    QPointer<AveragingPlotDlg> AveragingWindow;

Q_SIGNALS:
    /// The operator chose another unit, which the common range depends on.
    void unitChanged();

public Q_SLOTS:
    /// Prepares the window for a region, with its options as they are at first.
    void init();
    /// Lets go of the region and of the window of the average.
    void cleanUp();
    /// Empties the plot until it is refreshed.
    void clearPlot();
    /// These take over what ProtocolOp and GridOp say.
    void showProtocol() { refresh(); }
    void showGrid() { refresh(); }
    /// Shows or hides the row of options.
    void slotToggleOptions();
    void slotSaveAsBMP();
    /// Opens the help file of the paradigm, if there is one.
    void slotShowHelpHTML();

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void releaseAveragingWindow();
    [[nodiscard]] TimeCourseDisplay display() const;
    void showHeading(const QString& text, const QColor& color);

    RunSession& session_;
    RegionPlotSettings& settings_;
    const std::unique_ptr<Ui::TimeCoursePlotDlg> ui_;
    std::optional<PlotRange> commonRange_;
    QString heading_;
    int number_ = -1;
    bool outdated_ = true;
};
