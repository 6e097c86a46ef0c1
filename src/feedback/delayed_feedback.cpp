// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/delayed_feedback.h"

#include "base/messages.h"
#include "base/text_reading.h"
#include "run/protocol/prt_file.h"
#include "stats/design_matrix.h"
#include "stats/numerics/linear_systems.h"

#include <QTextStream>
#include <algorithm>
#include <cmath>

namespace {

/// The signal in the window of a trial, with what lies outside the run filled up.
std::vector<double> windowOf(std::span<const float> curve, qint64 first, size_t length) {
    std::vector<double> values(length, 0.0);
    bool reachesOutside = false;
    for (size_t k = 0; k < length; ++k) {
        const qint64 volume = first + qint64(k);
        if (volume >= 0 && volume < qint64(curve.size()))
            values[k] = double(curve[size_t(volume)]);
        else
            reachesOutside = true;
    }
    const auto known = std::ranges::find_if(values, [](double value) { return value != 0.0; });
    if (reachesOutside && known != values.end())
        std::ranges::replace(values, 0.0, double(*known));
    return values;
}

/// Slope over constant of the least-squares fit y = slope x + constant. Where x says nothing the
/// slope is 0.
double slopeOverConstant(std::span<const float> x, std::span<const double> y) {
    double xx = 0.0, sumX = 0.0, xy = 0.0, sumY = 0.0;
    for (size_t k = 0; k < y.size(); ++k) {
        const auto value = double(x[k]);
        xx += value * value;
        sumX += value;
        xy += value * y[k];
        sumY += y[k];
    }
    const double normal[] = {xx, sumX, sumX, double(y.size())};
    numerics::NormalInverse inverted;
    if (!numerics::invertNormalMatrix(normal, 2, inverted))
        return 0.0;
    const std::vector<double>& inverse = inverted.inverse;
    return (inverse[0] * xy + inverse[1] * sumY) / (inverse[2] * xy + inverse[3] * sumY);
}

QString protocolFault(const PRTParsing& parsing, const StimulationProtocol& protocol,
                      const QString& path) {
    if (protocol.resolutionOfTime == ResolutionOfTime::Milliseconds)
        return QStringLiteral("This is a millisecond protocol - only volume-based protocols "
                              "supported.");
    if (parsing.result == PRTResult::InsufficientMemory)
        return QStringLiteral("FATAL ERROR: Insufficient memory!");
    if (parsing.result == PRTResult::Damaged)
        return QStringLiteral("ERROR: Protocol file \"%1\" is damaged: %2.")
            .arg(path, parsing.damage);
    return {};
}

} // namespace

int firstTrialCondition(int nrOfConditions) {
    return std::min(nrOfConditions, 2) - 1;
}

void fitWindowToCondition(DelayedFeedbackSettings& settings, const ProtocolCondition& condition,
                          float TR) {
    if (condition.nrOfIntervals < 1 || !(TR > 0.0f))
        return;
    constexpr double milliseconds = 8000.0; // in which the response returns to its baseline
    const double lag = std::floor(milliseconds / double(TR) + 0.5);
    const double length = double(condition.to[0]) - double(condition.from[0]) + 1.0;
    const double end = length + lag;
    constexpr double limit = largestDelayedVolume;
    settings.ModulationTo = int(std::clamp(end, -limit, limit));
    settings.UpdateFeedbackFile = int(std::clamp(end + 1.0, 0.0, limit));
}

QString delayedFeedbackFault(const DelayedFeedbackSettings& settings) {
    if (settings.ModulationFrom < settings.BaselineFrom)
        return QStringLiteral("The modulation interval must not begin before the baseline "
                              "interval.");
    if (settings.ModulationTo < settings.ModulationFrom)
        return QStringLiteral("The modulation interval must not end before it begins.");
    // What is not measured yet is 0, and would enter the fit.
    if (settings.ModulationTo > settings.UpdateFeedbackFile)
        return QStringLiteral("The modulation interval must not end after the volume at which the "
                              "feedback file is updated.");
    const QString& name = settings.fileName;
    if (name.trimmed().isEmpty() || name == "." || name == ".." || name.contains('/') ||
        name.contains('\\'))
        return QStringLiteral("The feedback file needs a name without a folder: it is written into "
                              "the feedback folder.");
    return {};
}

std::optional<DueTrial> dueTrial(const DelayedFeedbackSettings& settings,
                                 const StimulationProtocol& protocol, int nrOfSkippedVolumes,
                                 int volume) {
    if (settings.condition < 0 || settings.condition >= protocol.nrOfConditions())
        return {};
    const ProtocolCondition& condition = protocol.conditions[size_t(settings.condition)];
    const int count =
        std::clamp(condition.nrOfIntervals, 0, int(ProtocolCondition::maximumIntervals));
    int trial = -1;
    qint64 latest = 0;
    for (int i = 0; i < count; ++i) {
        const qint64 onset = qint64(condition.from[size_t(i)]) - nrOfSkippedVolumes;
        if (onset < volume && (trial < 0 || onset > latest)) {
            trial = i;
            latest = onset;
        }
    }
    if (trial < 0 || volume - latest != settings.UpdateFeedbackFile)
        return {};
    return DueTrial{trial, int(latest)};
}

double delayedPercentChange(const DelayedFeedbackSettings& settings, std::span<const float> curve,
                            int onset, const TwoGammaHRFParams& hrf, float TR) {
    const qint64 length = qint64(settings.ModulationTo) - settings.BaselineFrom + 1;
    constexpr qint64 longest = 2 * largestDelayedVolume + 1;
    if (curve.empty() || length < 1 || length > longest)
        return 0.0;
    const std::vector<double> y =
        windowOf(curve, qint64(onset) + settings.BaselineFrom, size_t(length));
    std::vector<float> x(size_t(length), 0.0f);
    const qint64 start = qint64(settings.ModulationFrom) - settings.BaselineFrom;
    std::fill(x.begin() + std::clamp(start, qint64(0), length), x.end(), 1.0f);
    // The protocol of the run may be in milliseconds; the box is in volumes.
    const StimulationProtocol inVolumes;
    const DesignSource source{.protocol = inVolumes, .TR = TR, .NrOfVolumes = int(length)};
    if (!convolveWithHRF(x, HRFModel::TwoGamma, int(length), hrf, source, {}))
        return 0.0;
    constexpr double percent = 100.0;
    return slopeOverConstant(x, y) * percent;
}

QByteArray delayedFeedbackLine(int trial, double value) {
    constexpr int narrow = 3;
    constexpr int wide = 12;
    QByteArray line;
    QTextStream stream(&line);
    stream << qSetFieldWidth(narrow) << trial << " " << qSetFieldWidth(wide) << value
           << qSetFieldWidth(0) << '\n';
    stream.flush();
    return line;
}

bool readProtocolForDelayedFeedback(const QString& path, StimulationProtocol& protocol) {
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(QStringLiteral("ERROR: Can not open protocol file: \"%1\" !").arg(path));
        return false;
    }
    StimulationProtocol read;
    const QString fault = protocolFault(parsePRT(text, false, read), read, path);
    if (!fault.isEmpty()) {
        showWarning(fault);
        return false;
    }
    protocol = std::move(read);
    protocol.protocolPath = path;
    return true;
}
