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
    int integer(int minimum, int maximum) {
        bool isNumber = false;
        const int number = stream_.word().toInt(&isNumber);
        return take(isNumber && number >= minimum && number <= maximum) ? number : minimum;
    }
    /// A comma or anything else behind the digits is a fault: "0,5" must not be read as 0.
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

/// The curves of a file as they stand in it; false where it can't be read.
bool readCurves(const QString& path, RTCFile& file) {
    QString text;
    return readTextFile(path, text) &&
           parseRTC(text, file, RTCScope::All, RTCTitle::Line) == RTCParseResult::Ok &&
           file.nrOfDataPoints > 0 && std::ranges::all_of(file.columns, isFinite);
}

} // namespace

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
    static_cast<void>(reader.integer("FileVersion:", fileVersion, fileVersion));
    static_cast<void>(reader.integer("NrOfTasks:", LetterCode::nrOfTasks, LetterCode::nrOfTasks));
    static_cast<void>(reader.integer("NrOfVOIs:", nrOfDecoderROIs, nrOfDecoderROIs));
    TaskWeights weights{};
    for (auto& row : weights)
        for (float& weight : row)
            weight = reader.real(-largestWeight, largestWeight);
    return reader.isRead() ? std::optional(weights) : std::nullopt;
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
    static_cast<void>(reader.integer("Version:", fileVersion, fileVersion));
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
    if (!readCurves(path, file) || file.version < 2 || file.type != "DesignMatrix") {
        showInformation("INFO - Problem loading RTC file with ideal responses!");
        return std::nullopt;
    }
    if (file.columns.size() != size_t(LetterCode::nrOfReferences)) {
        showWarning(QStringLiteral("This file must contain 9 time courses but has %1")
                        .arg(file.columns.size()));
        return std::nullopt;
    }
    ReferenceCurves references;
    std::ranges::move(file.columns, references.begin());
    return references;
}

std::optional<OfflineCurves> loadOfflineCurves(const QString& path) {
    RTCFile file;
    if (!readCurves(path, file) || file.version != 1 ||
        file.columns.size() < size_t(leastDecoderROIs) ||
        file.columns.size() > size_t(nrOfDecoderROIs)) {
        showInformation("INFO - Problem loading RTC file with VOI time courses!");
        return std::nullopt;
    }
    OfflineCurves offline{int(file.columns.size()), file.nrOfDataPoints, {}};
    offline.curves.fill(std::vector<float>(size_t(file.nrOfDataPoints), 0.5f));
    std::ranges::move(file.columns, offline.curves.begin());
    return offline;
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
