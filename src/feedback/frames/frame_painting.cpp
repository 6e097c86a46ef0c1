// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/frames/frame_painting.h"

#include <QGuiApplication>
#include <QPainter>
#include <algorithm>

namespace {

constexpr QColor levelColor(200, 200, 200);
constexpr QColor baseLineColor(200, 200, 0);
constexpr QColor targetColor(255, 0, 0);
constexpr QColor arrowColor(255, 255, 0);
constexpr QColor idleColor(0, 0, 50);

QPen framePen(const QColor& color, int width) {
    return {color, double(width), Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

/// The scale of a frame in pixels; all divisions cut toward zero.
struct Scale {
    int step;
    int width;

    explicit Scale(QSize size)
        : step((size.height() - 60) / thermometerSteps), width((size.height() - 40) / 8) {}

    /// A smaller frame has no room for boxes.
    [[nodiscard]] bool isVisible() const { return step > 0 && width > 0; }
    /// The upper edge of the box of a level from 1 to 10, and the base line of a base level. A
    /// target far off the scale, which a condition's name can give, is limited to what can be
    /// computed.
    [[nodiscard]] int yOfLevel(int level) const {
        constexpr int farOff = 1000;
        constexpr int top = 11;
        return (thermometerSteps - std::clamp(level, -farOff, farOff)) * step + top;
    }
};

/// The left edge of each thermometer.
std::vector<int> leftEdges(const FeedbackFrame& frame, QSize size, const Scale& scale) {
    if (frame.thermometers.size() < 2)
        return {size.width() / 2 - scale.width / 2};
    return {size.width() / 3 - scale.width / 2, int(2LL * size.width() / 3) - scale.width / 2};
}

class ThermometerPainter {
public:
    ThermometerPainter(QPainter& painter, const Scale& scale, int left)
        : painter_(painter), scale_(scale), left_(left) {}

    void drawScale() {
        painter_.setPen(framePen(Qt::white, 2));
        for (int level = thermometerSteps; level > 0; --level)
            drawBox(scale_.yOfLevel(level));
    }

    /// As many boxes upward from the base line as the scale has, or downward for a level below 0.
    void fillLevel(int level, int baseLevel) {
        const int step = scale_.step;
        const int baseLine = scale_.yOfLevel(baseLevel);
        painter_.setPen(framePen(Qt::white, 2));
        for (int i = 0; i < std::min(level, thermometerSteps - baseLevel); ++i) {
            fill(baseLine - step + 3 - i * step, baseLine - 3 - i * step);
            drawBox(baseLine - step + 1 - i * step);
        }
        for (int i = 0; i < std::min(-std::max(level, -thermometerSteps), baseLevel); ++i) {
            fill(baseLine + 3 + i * step, baseLine + step - 3 + i * step);
            drawBox(baseLine + 1 + i * step);
        }
    }

    void drawBaseLine(int baseLevel) {
        const int y = scale_.yOfLevel(baseLevel);
        painter_.setPen(framePen(baseLineColor, 3));
        painter_.drawLine(left_ - 5, y, left_ + scale_.width + 5, y);
    }

    void drawTarget(int target) {
        painter_.setPen(framePen(targetColor, 3));
        drawBox(scale_.yOfLevel(target));
    }

    /// To the left of the bar, with its tip at the middle of the target's box.
    void drawArrow(int target) {
        const int step = scale_.step;
        const int head = step / 3;
        const int tip = left_ - 8;
        const int back = tip - head;
        const int end = tip - (3 * step + 1) / 2;
        const int y = scale_.yOfLevel(target) + step / 2;
        const std::array<QPoint, 7> corners = {{{tip, y},
                                                {back, y - head},
                                                {back, y - head / 2},
                                                {end, y - head / 2},
                                                {end, y + head / 2},
                                                {back, y + head / 2},
                                                {back, y + head}}};
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(arrowColor);
        painter_.drawPolygon(corners.data(), int(corners.size()));
        painter_.setBrush(Qt::NoBrush);
    }

private:
    void drawBox(int y) {
        constexpr double roundness = 25.0;
        painter_.drawRoundedRect(QRect(left_, y, scale_.width, scale_.step), roundness, roundness,
                                 Qt::RelativeSize);
    }

    /// Both rows included; low boxes have none.
    void fill(int firstRow, int lastRow) {
        const QRect area(QPoint(left_ + 2, firstRow), QPoint(left_ + scale_.width - 4, lastRow));
        if (area.isValid())
            painter_.fillRect(area, levelColor);
    }

    QPainter& painter_;
    const Scale& scale_;
    int left_;
};

void paintThermometers(QPainter& painter, QSize size, const FeedbackFrame& frame) {
    const Scale scale(size);
    if (!scale.isVisible())
        return;
    const std::vector<int> lefts = leftEdges(frame, size, scale);
    for (size_t i = 0; i < std::min(lefts.size(), frame.thermometers.size()); ++i) {
        const FeedbackFrame::Thermometer& thermometer = frame.thermometers[i];
        ThermometerPainter bar(painter, scale, lefts[i]);
        bar.drawScale();
        if (frame.levelsShown)
            bar.fillLevel(thermometer.level, frame.baseLevel);
        if (frame.baseLevel > 0)
            bar.drawBaseLine(frame.baseLevel);
        if (!frame.arrowMode && thermometer.target > 0)
            bar.drawTarget(thermometer.target);
        if (frame.arrowShown && i == 0)
            bar.drawArrow(thermometer.target);
    }
}

void paintInstruction(QPainter& painter, QSize size, const QString& text) {
    painter.setFont(QFont(QGuiApplication::font().family(), 14, QFont::Bold));
    painter.setPen(framePen(levelColor, 3));
    const QFontMetrics metrics = painter.fontMetrics();
    painter.drawText(size.width() / 2 - metrics.horizontalAdvance(text) / 2,
                     size.height() - metrics.height() + 5, text);
}

/// Lines of text at the top left, in the application's font.
void paintLines(QPainter& painter, const QStringList& lines) {
    constexpr int lineHeight = 15;
    painter.setFont(QGuiApplication::font());
    painter.setPen(Qt::white);
    for (int i = 0; i < lines.size(); ++i)
        painter.drawText(5, (i + 1) * lineHeight, lines[i]);
}

void paintScaleFrame(QPainter& painter, QSize size, const FeedbackFrame& frame) {
    // The classifier's frame ends one pixel earlier, but its scale is where that of the others is.
    const bool smaller = frame.kind == FeedbackFrame::Kind::Classifier;
    const QSize used = smaller ? size - QSize(1, 1) : size;
    painter.setPen(framePen(Qt::white, 2));
    painter.drawRect(0, 0, used.width() - 1, used.height() - 1);
    paintThermometers(painter, size, frame);
    if (!frame.instruction.isEmpty())
        paintInstruction(painter, used, frame.instruction);
    paintLines(painter, frame.values);
}

} // namespace

void paintFeedbackFrame(QPainter& painter, QSize size, const FeedbackFrame& frame) {
    if (size.isEmpty())
        return;
    painter.save();
    painter.setClipRect(QRect(QPoint(), size), Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
    painter.setBrush(Qt::NoBrush);
    const bool idle = frame.kind == FeedbackFrame::Kind::Idle;
    painter.fillRect(QRect(QPoint(), size), idle ? idleColor : QColor(Qt::black));
    if (idle)
        paintLines(painter, {QStringLiteral("Neurofeedback display")});
    else if (frame.kind != FeedbackFrame::Kind::TimeCourse)
        paintScaleFrame(painter, size, frame);
    painter.restore();
}
