// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoding_log.h"

namespace {

/// A line of nine values; one that is wider than its column still has a blank before it.
template<class Table> QString valuesLine(const Table& table, size_t column) {
    constexpr int width = 10;
    QString line;
    for (const auto& row : table)
        line += u' ' + QString::number(double(row[column])).rightJustified(width - 1);
    return line + u'\n';
}

/// For each ROI or task the heading with its number, then its values.
template<class Table> QString tableText(const QString& heading, const Table& table) {
    QString text;
    for (size_t column = 0; column < table[0].size(); ++column)
        text += heading.arg(column + 1) + u'\n' + valuesLine(table, column);
    return text;
}

QString correlationText(const LetterDecoding& decoding) {
    return tableText(QStringLiteral("Raw correlation values for ROI %1 with 9 ref functions: "),
                     decoding.corr);
}

QString betaText(const LetterDecoding& decoding) {
    return tableText(QStringLiteral("Raw beta values for ROI %1 using 9 ref functions: "),
                     decoding.beta) +
           tableText(QStringLiteral("Normalized beta values for ROI %1 using 9 ref functions: "),
                     decoding.normalizedBeta);
}

QString patternText(const LetterDecoding& decoding) {
    return tableText(
        QStringLiteral("Result of beta pattern matching for task %1 for 9 ref functions:"),
        decoding.pattern);
}

QString combinedText(const DecoderSettings& settings, const LetterDecoding& decoding) {
    return tableText(QStringLiteral("Result of shape matching for task %1 for 9 ref functions:"),
                     decoding.shape) +
           patternText(decoding) + multiplicationLabel() + u'\n' +
           tableText(QStringLiteral("Result of multiplication for task %1 for 9 ref functions:"),
                     decoding.product) +
           weightedSumLabel(settings) + u'\n' +
           tableText(QStringLiteral("Result of weighted sum for task %1 for 9 ref functions:"),
                     decoding.score);
}

QString lettersText(const LetterDecoding& decoding) {
    QString text;
    for (size_t rank = 0; rank < decoding.best.size(); ++rank)
        text += QStringLiteral("Rank %1: %2 (%3)\n")
                    .arg(rank + 1)
                    .arg(decoding.best[rank].letter)
                    .arg(double(decoding.best[rank].score));
    return text;
}

} // namespace

QString multiplicationLabel() {
    return QStringLiteral("Multiplication of corr and beta score is shown in middle of plots");
}

QString weightedSumLabel(const DecoderSettings& settings) {
    return QStringLiteral(
               "Weighted sum (tau = %1) of corr and beta score is shown in middle of plots")
        .arg(double(settings.CorrBetaTau));
}

QString decodingLog(const DecoderSettings& settings, const LetterDecoding& decoding) {
    QString text = QStringLiteral("Letter %1:\n").arg(decoding.letter + 1);
    if (settings.UseCorr)
        text += correlationText(decoding);
    if (settings.UseBeta)
        text += betaText(decoding);
    if (settings.UseCorr && settings.UseBeta)
        text += combinedText(settings, decoding);
    else if (settings.UseBeta)
        text += patternText(decoding);
    else if (settings.UseCorr)
        text += tableText(QStringLiteral("Result of correlation for task %1 for 9 ref functions:"),
                          decoding.score);
    return text + lettersText(decoding) + u'\n';
}
