// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_files.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/number_text.h"
#include "base/text_reading.h"
#include "stats/design_matrix_rtc.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int fileVersion = 1;
constexpr double largestWeight = 1e6;

/// Reads keys and numbers in the order of the file. After the first fault all reads give the
/// minimum, and ok() is false.
class NumberReader {
public:
    explicit NumberReader(const QString& text) : stream_(text) {}

    void key(const char* name) { take(tokensAgree(stream_.word(), name)); }
    /// A key with the only value that can be read.
    void key(const char* name, int value) {
        key(name);
        integer(value, value);
    }
    int integer(int minimum, int maximum) {
        bool isNumber = false;
        const int number = stream_.word().toInt(&isNumber);
        return take(isNumber && number >= minimum && number <= maximum) ? number : minimum;
    }
    /// A comma or anything else after the digits is a fault: "0,5" must not be read as 0.
    float real(double minimum, double maximum) {
        bool isNumber = false;
        const double number = stream_.word().toDouble(&isNumber);
        // Fails for NaN as well.
        return float(take(isNumber && number >= minimum && number <= maximum) ? number : minimum);
    }
    int integer(const char* name, int minimum, int maximum) {
        key(name);
        return integer(minimum, maximum);
    }
    [[nodiscard]] bool ok() const { return ok_; }
    /// Nothing but white space is left.
    [[nodiscard]] bool isRead() const { return ok_ && stream_.atEnd(); }

private:
    bool take(bool good) {
        ok_ = ok_ && good;
        return ok_;
    }

    TokenStream stream_;
    bool ok_ = true;
};

// A number that is too large for a float has become infinite.
bool isFinite(const std::vector<float>& curve) {
    return std::ranges::all_of(curve, [](float value) { return std::isfinite(value); });
}

/// The curves of a file as they stand in it. Why they can't be read, for the operator; else empty.
QString readCurves(const QString& path, RTCFile& file) {
    QString text;
    if (!readTextFile(path, text))
        return QStringLiteral("The file \"%1\" can't be read.").arg(path);
    if (parseRTC(text, file, RTCScope::All, RTCTitle::Line) != RTCParseResult::Ok ||
        file.nrOfDataPoints < 1)
        return QStringLiteral("The file \"%1\" is cut or holds something else.").arg(path);
    if (!std::ranges::all_of(file.columns, isFinite))
        return QStringLiteral("The file \"%1\" has numbers that are too large.").arg(path);
    return {};
}

QString offlineCurvesFault(const QString& path, RTCFile& file) {
    if (const QString fault = readCurves(path, file); !fault.isEmpty())
        return fault;
    if (file.version != 1)
        return QStringLiteral("The file \"%1\" is a design matrix; the curves of a run begin with "
                              "\"NrOfRTCs:\".")
            .arg(path);
    const auto count = int(file.columns.size());
    return count >= leastDecoderROIs && count <= nrOfDecoderROIs
               ? QString()
               : QStringLiteral("The file \"%1\" has %2 VOIs, but it needs %3 to %4.")
                     .arg(path)
                     .arg(count)
                     .arg(leastDecoderROIs)
                     .arg(nrOfDecoderROIs);
}

QString partFault(const QString& path, const CurvesSize& size, const CurvesSize& part) {
    return size.nrOfROIs >= part.nrOfROIs && size.nrOfTimePoints >= part.nrOfTimePoints
               ? QString()
               : QStringLiteral("The file \"%1\" has %2 VOIs and %3 time points, but %4 and %5 are "
                                "expected.")
                     .arg(path)
                     .arg(size.nrOfROIs)
                     .arg(size.nrOfTimePoints)
                     .arg(part.nrOfROIs)
                     .arg(part.nrOfTimePoints);
}

CurvesSize sizeOf(const RTCFile& file) {
    return {int(file.columns.size()), file.nrOfDataPoints};
}

std::optional<OfflineCurves> loadPart(const QString& path, std::optional<CurvesSize> part) {
    RTCFile file;
    QString fault = offlineCurvesFault(path, file);
    if (fault.isEmpty() && part)
        fault = partFault(path, sizeOf(file), *part);
    if (!fault.isEmpty()) {
        showInformation("INFO - Problem loading RTC file with VOI time courses!\n" + fault);
        return std::nullopt;
    }
    OfflineCurves offline{part.value_or(sizeOf(file)), {}};
    const auto points = size_t(std::max(offline.size.nrOfTimePoints, 0));
    offline.curves.fill(std::vector<float>(points, missingROIValue));
    for (size_t roi = 0; roi < size_t(std::max(offline.size.nrOfROIs, 0)); ++roi)
        std::copy_n(file.columns[roi].begin(), points, offline.curves[roi].begin());
    return offline;
}

std::nullopt_t referencesRefused(const QString& reason) {
    showInformation("INFO - Problem loading RTC file with ideal responses!\n" + reason);
    return std::nullopt;
}

} // namespace

QString outputFileFault(const QString& path) {
    return QStringLiteral("ERROR: Can not open output file \"%1\" for writing.").arg(path);
}

QByteArray weightsText(const TaskWeights& weights) {
    QByteArray text = formatted("FileVersion: %i\nNrOfTasks:   %i\nNrOfVOIs:    %i\n", fileVersion,
                                LetterCode::nrOfTasks, nrOfDecoderROIs);
    for (const auto& row : weights) {
        for (const float weight : row)
            text += formatted(" %f", double(weight));
        text += '\n';
    }
    return text;
}

std::optional<TaskWeights> parseWeights(const QString& text) {
    NumberReader reader(text);
    reader.key("FileVersion:", fileVersion);
    reader.key("NrOfTasks:", LetterCode::nrOfTasks);
    reader.key("NrOfVOIs:", nrOfDecoderROIs);
    TaskWeights weights{};
    for (auto& row : weights)
        for (float& weight : row)
            weight = reader.real(-largestWeight, largestWeight);
    return reader.isRead() ? std::optional(weights) : std::nullopt;
}

TypedWeights typedWeights(const WeightCells& cells) {
    TypedWeights typed;
    for (size_t task = 0; task < cells.size(); ++task)
        for (size_t roi = 0; roi < cells[task].size(); ++roi) {
            bool isNumber = false;
            const double weight = cells[task][roi].trimmed().toDouble(&isNumber);
            if (!isNumber || !(std::fabs(weight) <= largestWeight)) {
                typed.fault = QStringLiteral("The weight of %1 for task %2 must be a number from "
                                             "%3 to %4, with a point before its decimals.")
                                  .arg(decoderROIName(int(roi)))
                                  .arg(task + 1)
                                  .arg(-largestWeight, 0, 'f', 0)
                                  .arg(largestWeight, 0, 'f', 0);
                return typed;
            }
            typed.weights[task][roi] = float(weight);
        }
    return typed;
}

QByteArray scaledWeightsText(const TaskWeights& scaled) {
    QByteArray text;
    for (const auto& row : scaled) {
        for (const float weight : row)
            text += formatted("%9g ", double(weight));
        text += '\n';
    }
    return text;
}

QByteArray decoderSettingsText(const DecoderSettings& settings) {
    QByteArray text =
        formatted("Version: %i\n\n"
                  "SkipTimePointsAtBegin:   %i\n\n"
                  "FullWindowSize:          %i\n"
                  "SkipAtBeginOfWindow:     %i\n"
                  "SkipAtEndOfWindow:       %i\n"
                  "IdealResponseWindowSize: %i\n"
                  "HelperVOIsMode:          %i\n",
                  fileVersion, settings.SkipTimePointsAtBegin, settings.FullWindowSize,
                  settings.SkipAtBeginOfWindow, settings.SkipAtEndOfWindow,
                  settings.IdealResponseWindowSize, int(settings.HelperVOIsMode));
    text += "CorrBetaTau:             " + shortestText(settings.CorrBetaTau) + "\n\n";
    text += formatted("MeanForPercSignalFrom:   %i\n"
                      "MeanForPercSignalTo:     %i\n\n"
                      "NrOfExtraPlotLines:      %i\n",
                      settings.MeanForPercSignalFrom, settings.MeanForPercSignalTo,
                      int(settings.extraLines.size()));
    for (const float position : settings.extraLines)
        text += shortestText(position) + '\n';
    return text;
}

std::optional<DecoderSettings> parseDecoderSettings(const QString& text,
                                                    const DecoderSettings& start) {
    constexpr int most = mostDecoderPoints;
    DecoderSettings settings = start;
    NumberReader reader(text);
    reader.key("Version:", fileVersion);
    settings.SkipTimePointsAtBegin = reader.integer("SkipTimePointsAtBegin:", 0, most);
    settings.FullWindowSize = reader.integer("FullWindowSize:", 1, most);
    settings.SkipAtBeginOfWindow = reader.integer("SkipAtBeginOfWindow:", 0, most);
    settings.SkipAtEndOfWindow = reader.integer("SkipAtEndOfWindow:", -most, most);
    settings.IdealResponseWindowSize = reader.integer("IdealResponseWindowSize:", 1, most);
    settings.HelperVOIsMode = HelperVOIs(
        reader.integer("HelperVOIsMode:", int(HelperVOIs::OnlyHelpers), int(HelperVOIs::Both)));
    reader.key("CorrBetaTau:");
    settings.CorrBetaTau = reader.real(0.0, 1.0);
    settings.MeanForPercSignalFrom = reader.integer("MeanForPercSignalFrom:", 0, most);
    settings.MeanForPercSignalTo = reader.integer("MeanForPercSignalTo:", 0, most);
    const int nrOfLines = reader.integer("NrOfExtraPlotLines:", 0, mostExtraLines);
    settings.extraLines.clear();
    for (int i = 0; i < nrOfLines && reader.ok(); ++i)
        settings.extraLines.push_back(reader.real(0.0, most));
    if (!reader.isRead() || !decoderSettingsFault(settings).isEmpty())
        return std::nullopt;
    return settings;
}

std::optional<ReferenceCurves> loadReferences(const QString& path) {
    RTCFile file;
    if (const QString fault = readCurves(path, file); !fault.isEmpty())
        return referencesRefused(fault);
    if (file.version < 2 || file.type != "DesignMatrix")
        return referencesRefused(
            QStringLiteral("The file \"%1\" is no design matrix of version 2.").arg(path));
    if (file.columns.size() != size_t(LetterCode::nrOfReferences)) {
        showWarning(QStringLiteral("This file must contain 9 time courses but has %1")
                        .arg(file.columns.size()));
        return std::nullopt;
    }
    ReferenceCurves references;
    std::ranges::move(file.columns, references.begin());
    return references;
}

std::optional<ReferenceCurves> loadReferences(const QString& path, int nrOfPoints) {
    std::optional<ReferenceCurves> references = loadReferences(path);
    if (references && references->front().size() != size_t(nrOfPoints))
        return referencesRefused(
            QStringLiteral("The file \"%1\" has %2 points, but the window of ideal responses %3.")
                .arg(path)
                .arg(references->front().size())
                .arg(nrOfPoints));
    return references;
}

std::optional<OfflineCurves> loadOfflineCurves(const QString& path) {
    return loadPart(path, {});
}

std::optional<OfflineCurves> loadOfflineCurves(const QString& path, CurvesSize part) {
    return loadPart(path, part);
}

std::optional<CurvesSize> sizeOfOfflineCurves(const QString& path) {
    RTCFile file;
    return offlineCurvesFault(path, file).isEmpty() ? std::optional(sizeOf(file)) : std::nullopt;
}

QByteArray referencesText(const ReferenceCurves& references) {
    RTCFile file;
    file.nrOfDataPoints = int(references[0].size());
    for (int r = 0; r < LetterCode::nrOfReferences; ++r)
        file.names << referenceName(r);
    file.columns.assign(references.begin(), references.end());
    return rtcText(file, RTCNumbers::Aligned);
}

bool writeReferences(const ReferenceCurves& references, const QString& path) {
    if (writeFileAtomically(path, referencesText(references)))
        return true;
    showWarning(QStringLiteral("ERROR: Unable to open file \"%1\"!").arg(path));
    return false;
}
