// The plot of a reference response, with the scores of the three tasks in its middle.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_code.h"
#include "display/plots/plotter.h"

#include <array>

/// The score of a task with the reference of the plot.
struct TaskMark {
    QColor color; ///< of its rank
    QString score;
    QString product;     ///< empty for none
    bool isBest = false; ///< no other reference is better for this task

    bool operator==(const TaskMark&) const = default;
};

class ReferencePlot : public Plotter {
    Q_OBJECT

public:
    explicit ReferencePlot(QWidget* parent = nullptr) : Plotter(parent) {}

    /// By task; nothing for no marks.
    void setMarks(const std::optional<std::array<TaskMark, LetterCode::nrOfTasks>>& marks);
    [[nodiscard]] const std::optional<std::array<TaskMark, LetterCode::nrOfTasks>>& marks() const {
        return marks_;
    }
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) override;

private:
    std::optional<std::array<TaskMark, LetterCode::nrOfTasks>> marks_;
};
