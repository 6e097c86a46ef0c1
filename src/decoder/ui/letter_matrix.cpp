// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/letter_matrix.h"

#include "decoder/ui/decoding_plots.h"
#include "dialogs/appearance.h"
#include "display/plots/plot_colors.h"

#include <QPainter>
#include <algorithm>

namespace {

constexpr double margin = 6.0;
constexpr double groupGap = 8.0; ///< between two onsets, and two tasks

QPixmap pictureOfStage(int stage) {
    static constexpr const char* names[LetterCode::nrOfStages] = {"00-10", "10-20", "20-30",
                                                                  "30-40", "40-50", "50-70"};
    const bool isStage = stage >= 0 && stage < LetterCode::nrOfStages;
    return QPixmap(QStringLiteral(":/resources/%1.bmp").arg(isStage ? names[stage] : "cue"));
}

/// The largest size in which the widest letter fits into the cell.
QFont letterFont(const QFont& base, const QRectF& cell) {
    constexpr double leastSize = 8.0;
    QFont font = base;
    font.setBold(true);
    double size = std::max(cell.height() * 0.82, leastSize);
    font.setPixelSize(int(size));
    const double room = cell.width() - 6.0;
    size *= std::min(1.0, room / QFontMetricsF(font).horizontalAdvance(u'W'));
    font.setPixelSize(std::max(int(size), int(leastSize)));
    return font;
}

} // namespace

LetterMatrix::LetterMatrix(QWidget* parent) : QWidget(parent), picture_(pictureOfStage(-1)) {}

void LetterMatrix::setStage(int stage) {
    if (stage == stage_)
        return;
    stage_ = stage;
    picture_ = pictureOfStage(stage);
    update();
}

void LetterMatrix::setBest(const std::optional<LetterDecoding>& decoding, bool fourLetters) {
    best_ = decoding ? decoding->best : std::array<RankedLetter, 3>{};
    fourLetters_ = fourLetters;
    QString names;
    for (const RankedLetter& ranked : best_)
        names += ranked.letter;
    setAccessibleName(QStringLiteral("Best letters: ") + names);
    update();
}

double LetterMatrix::captionHeight() const {
    return QFontMetricsF(font()).lineSpacing();
}

QRectF LetterMatrix::lettersArea() const {
    const double strip = picture_.height() * (width() - 2 * margin) / std::max(picture_.width(), 1);
    return QRectF(rect()).adjusted(margin, margin + strip + 2 * captionHeight(), -margin, -margin);
}

QRectF LetterMatrix::cell(const LetterCode& code) const {
    const QRectF area = lettersArea();
    const double width =
        (area.width() - (LetterCode::nrOfOnsets - 1) * groupGap) / LetterCode::nrOfReferences;
    const double rowHeight =
        (area.height() - (LetterCode::nrOfTasks - 1) * groupGap) / LetterCode::nrOfTasks;
    return {area.left() + code.reference * width + code.onset() * groupGap,
            area.top() + code.task * (rowHeight + groupGap), width, rowHeight};
}

QSize LetterMatrix::sizeHint() const {
    return {510, 300};
}

QSize LetterMatrix::minimumSizeHint() const {
    return {420, 220};
}

// The seconds of onset and duration, over the columns.
void LetterMatrix::paintCaptions(QPainter& painter) const {
    painter.setPen(plotColors::quietText);
    const double line = captionHeight();
    for (int reference = 0; reference < LetterCode::nrOfReferences; ++reference) {
        const LetterCode code{0, reference};
        const QRectF column = cell(code);
        const auto seconds = int(LetterCode::timeStep / 1000.0);
        painter.drawText(QRectF(column.left(), column.top() - line, column.width(), line),
                         Qt::AlignCenter,
                         QStringLiteral("%1 s").arg(seconds * (code.duration() + 1)));
        if (code.duration() == 0)
            painter.drawText(
                QRectF(column.left(), column.top() - 2 * line, 3 * column.width(), line),
                Qt::AlignCenter, QStringLiteral("Begin at %1 s").arg(seconds * code.onset()));
    }
}

void LetterMatrix::paintLetter(QPainter& painter, const LetterCode& code) const {
    const QRectF place = cell(code).adjusted(1.5, 1.5, -1.5, -1.5);
    const int rank = rankOf(best_, code);
    const bool isRanked = rank >= 0;
    const bool performed = code.isPerformedIn(stage_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isRanked ? rankColor(rank) : QColor(0x15, 0x1d, 0x27));
    painter.drawRoundedRect(place, 5, 5);
    if (performed)
        painter.fillRect(QRectF(place.left() + 4, place.bottom() - 5, place.width() - 8, 4),
                         plotColors::accent);
    if (fourLetters_ && !isOfFourLetters(code))
        return;
    painter.setPen(isRanked ? QColor(Qt::black) : performed ? QColor(Qt::white) : plotColors::text);
    const QChar letter = letterOf(code);
    painter.drawText(place.adjusted(0, -2, 0, -2), Qt::AlignCenter,
                     fourLetters_ ? fourLetterName(letter) : letter);
}

void LetterMatrix::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), plotColors::background);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double width = this->width() - 2 * margin;
    painter.drawPixmap(
        QRectF(margin, margin, width, picture_.height() * width / std::max(picture_.width(), 1)),
        picture_, picture_.rect());
    paintCaptions(painter);
    painter.setFont(letterFont(font(), cell({0, 0})));
    for (int task = 0; task < LetterCode::nrOfTasks; ++task)
        for (int reference = 0; reference < LetterCode::nrOfReferences; ++reference)
            paintLetter(painter, {task, reference});
}
