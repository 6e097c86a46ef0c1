// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/tdat_protocol.h"

namespace {

// Provisional end of an interval, until a later line ends it.
constexpr int farEnd = 1000000; // milliseconds
constexpr const char* responseCondition = "RESPONSE";

class TDATLine {
public:
    TDATLine(const QString& line, StimulationProtocol& protocol, TDATState& state)
        : line_(line), stream_(line.toUpper()), protocol_(protocol), state_(state) {}

    LineEffect take();

private:
    bool findScan();
    void takeScan();
    void beginEvent(bool withEnd);
    void endEvent();
    void takeResponse();
    void badLine();
    /// Makes this the latest event. `condition` is -1 when it is not in the model.
    void startEvent(const QString& name);
    /// Time stamp of the line, on the clock of the protocol.
    [[nodiscard]] int now() const { return clampedTime(double(time_) - state_.tdatTimeOrigin); }

    const QString& line_;
    TokenStream stream_;
    StimulationProtocol& protocol_;
    TDATState& state_;
    int time_ = 0;
    LineEffect effect_;
};

LineEffect TDATLine::take() {
    if (findScan()) {
        protocol_.coveredTime = std::max(protocol_.coveredTime, time_);
        takeScan();
    }
    return effect_;
}

// The word before "SCAN" is the time stamp.
bool TDATLine::findScan() {
    QString previous;
    for (;;) {
        const QString word = stream_.word();
        if (word.isEmpty())
            return false;
        if (word == "SCAN")
            break;
        previous = word;
    }
    TokenStream stamp(previous);
    const std::optional<int> time = readTime(stamp);
    if (!time)
        badLine();
    time_ = time.value_or(0);
    return time.has_value();
}

void TDATLine::takeScan() {
    const QString what = stream_.word();
    const QString& event = state_.tdatEventWord;
    if (what == "RUNEND")
        state_.runEnded = true;
    else if (what == event + "BEGIN" || what == event + "BEGINEND")
        beginEvent(what.endsWith("END"));
    else if (what == event + "END")
        endEvent();
    else if (what == "RESPONSE")
        takeResponse();
}

void TDATLine::beginEvent(bool withEnd) {
    const QString name = stream_.word();
    const std::optional<int> duration = withEnd ? readTime(stream_) : farEnd;
    if (name.isEmpty() || !duration) {
        badLine();
        return;
    }
    startEvent(name);
    const double end = double(now()) + *duration;
    if (state_.tdatCurrentCondition < 0)
        return;
    // An event that doesn't fit into its condition must not, when it ends, change the one before
    // it.
    if (!protocol_.addInterval(state_.tdatCurrentCondition, now(), clampedTime(end)))
        state_.tdatCurrentCondition = -1;
    effect_.intervalsChanged = true;
}

void TDATLine::startEvent(const QString& name) {
    if (state_.tdatFirstEvent)
        state_.tdatTimeOrigin = time_;
    state_.tdatFirstEvent = false;
    state_.tdatCurrentName = name;
    const bool isPredictor = !state_.otherConditions.contains(name);
    state_.tdatCurrentCondition = isPredictor ? protocol_.conditionIndex(name) : -1;
}

void TDATLine::endEvent() {
    if (stream_.word() != state_.tdatCurrentName) {
        effect_.message = QStringLiteral("PARSING ERROR in TDAT file: Expected  %1 > %2 < ")
                              .arg(state_.tdatEventWord, state_.tdatCurrentName);
        return;
    }
    const std::optional<int> duration = readTime(stream_);
    if (!duration) {
        badLine();
        return;
    }
    if (state_.tdatCurrentCondition < 0)
        return;
    ProtocolCondition& condition = protocol_.conditions[size_t(state_.tdatCurrentCondition)];
    const size_t last = size_t(condition.nrOfIntervals) - 1;
    condition.to[last] = clampedTime(double(condition.from[last]) + *duration);
    effect_.intervalsChanged = true;
}

void TDATLine::takeResponse() {
    stream_.word(); // its name
    const int reactionTime = stream_.integer();
    const int accuracy = stream_.integer();
    const int omission = stream_.integer();
    const QString buttons = omission == 0 ? stream_.word() : QString();
    if (stream_.failed()) {
        badLine();
        return;
    }
    if (!protocol_.hasResponses)
        return;
    const int condition = protocol_.responseConditionIndex(responseCondition);
    if (protocol_.addResponseInterval(condition, now(), clampedTime(now() + 1.0)))
        protocol_.setResponseValues(condition, now(), reactionTime, accuracy, omission, buttons);
}

void TDATLine::badLine() {
    if (!state_.badLineReported)
        effect_.message = QStringLiteral("WARNING: A line of the .tdat file lacks a value and is "
                                         "ignored, as are all others like it:\n\n%1")
                              .arg(shortened(line_.simplified()));
    state_.badLineReported = true;
}

} // namespace

LineEffect applyTDATLine(const QString& line, StimulationProtocol& protocol, TDATState& state) {
    return TDATLine(line, protocol, state).take();
}
