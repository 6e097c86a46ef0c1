// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_table.h"

#include <QList>
#include <cmath>

namespace {

const QByteArray notAvailable = "n/a";

QByteArray numberText(double value) {
    return std::isfinite(value) ? QByteArray::number(value, 'g', 9) : notAvailable;
}

QByteArray levelText(bool shown, int level) {
    return shown ? QByteArray::number(level) : notAvailable;
}

QByteArray realText(bool known, float value) {
    return known ? numberText(double(value)) : notAvailable;
}

/// A name must not end the cell or the row.
QByteArray nameText(const QString& name) {
    QString text = name;
    for (const char separator : {'\t', '\n', '\r'})
        text.replace(separator, ' ');
    return text.isEmpty() ? notAvailable : text.toUtf8();
}

QByteArray row(const QList<QByteArray>& cells) {
    return cells.join('\t') + '\n';
}

} // namespace

QByteArray feedbackTableHead(int nrOfRegions) {
    QList<QByteArray> cells = {"volume", "condition"};
    for (int region = 1; region <= nrOfRegions; ++region)
        cells << "roi" + QByteArray::number(region);
    cells << "baseline1"
          << "baseline2"
          << "relative_level"
          << "shown_level1"
          << "shown_level2"
          << "target1"
          << "target2"
          << "suppressed"
          << "milliseconds";
    return row(cells);
}

QByteArray feedbackTableRow(const FeedbackRow& given, int nrOfRegions) {
    const FeedbackValues& values = given.values;
    const bool ofRegions = values.computed && !values.classifier;
    const bool pair = ofRegions && values.pair;
    const bool shown = values.computed && given.levelShown;
    const bool live = values.live && !values.classifier;
    const auto targetText = [](bool known, int target) {
        return levelText(known && target != noTargetLevel, target);
    };
    QList<QByteArray> cells = {QByteArray::number(given.volume + 1), nameText(given.condition)};
    for (size_t region = 0; int(region) < nrOfRegions; ++region)
        cells << (region < given.regionSignals.size()
                      ? numberText(double(given.regionSignals[region]))
                      : notAvailable);
    cells << realText(ofRegions, values.Baseline1) << realText(pair, values.Baseline2)
          << realText(ofRegions && !pair, values.RelativeLevel) << levelText(shown, values.FbLevel1)
          << levelText(shown && pair, values.FbLevel2) << targetText(ofRegions, values.TargetLevel)
          << targetText(pair, values.TargetLevel2) << levelText(live, values.hidesLevel())
          << numberText(given.milliseconds);
    return row(cells);
}
