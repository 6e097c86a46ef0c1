// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/real_time_protocol.h"

namespace {

// Provisional end of an interval, until a later line ends it.
constexpr int farEndVolumes = 1000;
constexpr int farEndMilliseconds = 1000000;

class RTPLine {
public:
    RTPLine(const RunLength& run, StimulationProtocol& protocol, RealTimeProtocolState& state)
        : run_(run), protocol_(protocol), state_(state),
          inVolumes_(protocol.resolutionOfTime == ResolutionOfTime::Volumes) {}

    LineEffect take(const QString& line);

private:
    void endScan();
    bool readValues(TokenStream stream);
    void takeValues();
    void takeValue(size_t predictor);
    void takeBaseline();
    void beginInterval(int condition);
    void endInterval(int condition, int end);
    /// The last time unit before that of the line.
    [[nodiscard]] int before() const {
        return clampedTime(double(time_) - (inVolumes_ ? 1.0 : 0.0));
    }
    void cover(double milliseconds) {
        protocol_.coveredTime = std::max(protocol_.coveredTime, clampedTime(milliseconds));
    }

    const RunLength& run_;
    StimulationProtocol& protocol_;
    RealTimeProtocolState& state_;
    const bool inVolumes_;
    int time_ = 0;
    LineEffect effect_;
};

LineEffect RTPLine::take(const QString& line) {
    const QString words = line.simplified().toUpper();
    if (words == "SCAN BEGIN")
        return effect_;
    if (words == "SCAN END")
        endScan();
    else if (readValues(TokenStream(words)))
        takeValues();
    else
        effect_.message = "INTERNAL ERROR - Incomplete CSL!";
    return effect_;
}

void RTPLine::endScan() {
    const int volumes = run_.nrOfAnalysedVolumes;
    protocol_.coveredTime = clampedTime((volumes + 1.0) * double(run_.TR));
    state_.rtpFinished = true;
    if (state_.rtpHasBaseline && state_.rtpPreviousAllZero)
        endInterval(0, inVolumes_ ? volumes : clampedTime(volumes * double(run_.TR)));
}

// A line is read completely before any of it is used, so that one with too few values has no
// effect.
bool RTPLine::readValues(TokenStream stream) {
    const std::optional<int> time = readTime(stream);
    for (float& value : state_.rtpCurrent) {
        const double read = stream.real();
        if (stream.failed() || std::abs(read) >= RealTimeProtocolState::valueLimit)
            return false;
        value = float(std::max(read, 0.0));
    }
    time_ = time.value_or(0);
    return time.has_value();
}

void RTPLine::takeValues() {
    cover(double(time_) * (inVolumes_ ? double(run_.TR) : 1.0));
    state_.rtpAllZero = true;
    for (size_t i = 0; i < state_.rtpCurrent.size(); ++i)
        takeValue(i);
    if (state_.rtpHasBaseline)
        takeBaseline();
    state_.rtpPreviousAllZero = state_.rtpAllZero;
    state_.rtpFirstLine = false;
}

void RTPLine::takeValue(size_t predictor) {
    const int condition = int(predictor) + (state_.rtpHasBaseline ? 1 : 0);
    const float previous = state_.rtpFirstLine ? 0.0f : state_.rtpPrevious[predictor];
    const float current = state_.rtpCurrent[predictor];
    if (previous == 0.0f && current > 0.0f) {
        state_.rtpWeights[predictor] = current;
        beginInterval(condition);
    }
    if (previous > 0.0f && current == 0.0f)
        endInterval(condition, before());
    state_.rtpPrevious[predictor] = current;
    if (current > 0.0f)
        state_.rtpAllZero = false;
}

void RTPLine::takeBaseline() {
    if (state_.rtpAllZero && !state_.rtpPreviousAllZero)
        beginInterval(0);
    if (!state_.rtpAllZero && state_.rtpPreviousAllZero)
        endInterval(0, before());
}

void RTPLine::beginInterval(int condition) {
    const int length = inVolumes_ ? farEndVolumes : farEndMilliseconds;
    state_.holds[size_t(condition)] =
        protocol_.addInterval(condition, time_, clampedTime(double(time_) + length));
    effect_.intervalsChanged = true;
}

// An interval that didn't fit must not end another one.
void RTPLine::endInterval(int condition, int end) {
    if (!state_.holds[size_t(condition)])
        return;
    ProtocolCondition& record = protocol_.conditions[size_t(condition)];
    record.to[size_t(record.nrOfIntervals) - 1] = end;
    state_.holds[size_t(condition)] = false;
    effect_.intervalsChanged = true;
}

} // namespace

LineEffect applyRTPLine(const QString& line, const RunLength& run, StimulationProtocol& protocol,
                        RealTimeProtocolState& state) {
    return RTPLine(run, protocol, state).take(line);
}
