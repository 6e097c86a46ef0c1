// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"
#include "run/protocol/real_time_protocol.h"

#include <QStringList>

namespace {

// Two quotes, three numbers and a word, with the blanks between them.
constexpr qsizetype shortestCondition = 8;
// Two quotes, a selection state and three numbers, with the blanks that part them.
constexpr qsizetype shortestContrast = 9;
// End of the first interval of the baseline, whatever the unit.
constexpr int openEnd = 100000;

class RTPHeaderParser {
public:
    RTPHeaderParser(const QString& text, StimulationProtocol& protocol,
                    RealTimeProtocolState& state)
        : stream_(text), length_(text.size()), protocol_(protocol), state_(state) {}

    HeaderParsing parse();

private:
    bool readUnit();
    bool readConditions();
    bool readCondition(QStringList& names);
    bool readContrasts();
    bool readContrastTable(int count);
    void readPlotColors();
    void startStates();
    RgbColor color();
    RgbColor keyAndColor();
    int keyAndInteger();
    /// True when the rest of the text has room for that many records.
    bool countIsPossible(int count, qsizetype shortest);
    bool damaged(const QString& what);

    TokenStream stream_;
    qsizetype length_;
    StimulationProtocol& protocol_;
    RealTimeProtocolState& state_;
    HeaderParsing parsing_;
};

HeaderParsing RTPHeaderParser::parse() {
    protocol_.clearProtocol();
    protocol_.acceptNewConditions = true;
    state_ = {};
    keyAndInteger(); // version
    if (!readUnit())
        return parsing_;
    stream_.word();
    stream_.word(); // not used
    if (!readConditions() || !readContrasts())
        return parsing_;
    readPlotColors();
    if (stream_.failed()) {
        damaged("its header can not be read");
        return parsing_;
    }
    startStates();
    parsing_.good = true;
    parsing_.length = stream_.position();
    return parsing_;
}

bool RTPHeaderParser::readUnit() {
    stream_.word();
    const QString unit = stream_.word();
    if (unit.toLower() == "volumes")
        protocol_.resolutionOfTime = ResolutionOfTime::Volumes;
    else if (unit.toLower() == "ms")
        protocol_.resolutionOfTime = ResolutionOfTime::Milliseconds;
    else
        parsing_.message = QStringLiteral("ERROR - Unexpected token for \"ResolutionOfTime\" "
                                          "found: \"%1\" !")
                               .arg(shortened(unit));
    return parsing_.message.isEmpty();
}

bool RTPHeaderParser::readConditions() {
    const int count = keyAndInteger();
    if (stream_.failed() || !countIsPossible(count, shortestCondition))
        return damaged("the number of conditions is wrong");
    if (count > maximumTableEntries)
        return damaged(QStringLiteral("it has more than %1 conditions").arg(maximumTableEntries));
    if (!memoryIsAvailable(size_t(count), sizeof(ProtocolCondition))) {
        parsing_.message = "FATAL ERROR: Insufficient memory!";
        return false;
    }
    protocol_.conditions.reserve(size_t(count));
    QStringList names;
    for (int i = 0; i < count; ++i)
        if (!readCondition(names))
            return damaged(QStringLiteral("condition %1 can not be read").arg(i + 1));
    const QStringList paradigm{"Motion", "Fixation", "Stimulus", "Reward"};
    state_.rewardParadigm = std::all_of(paradigm.begin(), paradigm.end(),
                                        [&](const QString& name) { return names.contains(name); });
    return true;
}

bool RTPHeaderParser::readCondition(QStringList& names) {
    QString name;
    if (!readDelimitedString('"', name, stream_))
        return false;
    names << name;
    // Not by name: two conditions of the same name still have a value each in every line.
    ProtocolCondition& condition = protocol_.conditions.emplace_back();
    condition.name = name.left(ProtocolCondition::maximumNameLength);
    condition.color = color();
    if (stream_.word().toLower() == "yes") {
        state_.rtpPrevious.push_back(0.0f);
    } else {
        state_.rtpHasBaseline = true;
        state_.baselineMisplaced |= protocol_.nrOfConditions() > 1;
    }
    return !stream_.failed();
}

bool RTPHeaderParser::readContrasts() {
    using Source = ProtocolContrasts::Source;
    stream_.word();
    const QString request = stream_.word().toLower();
    if (request == "vco") {
        state_.contrasts.source = Source::ContrastFile;
        return true;
    }
    if (request == "auto1" || request == "auto2") {
        state_.contrasts.source = Source::Generated;
        state_.contrasts.level = request == "auto1" ? 1 : 2;
        return true;
    }
    state_.contrasts.source = Source::Table;
    TokenStream number(request);
    const int count = number.integer();
    if (number.failed() || !countIsPossible(count, shortestContrast))
        return damaged("the number of contrasts is wrong");
    if (count > maximumTableEntries)
        return damaged(QStringLiteral("it has more than %1 contrasts").arg(maximumTableEntries));
    return readContrastTable(count) || damaged("its contrasts can not be read");
}

bool RTPHeaderParser::readContrastTable(int count) {
    std::vector<ProtocolContrasts::Contrast>& table = state_.contrasts.table;
    stream_.word();
    for (int i = 0; i < count; ++i)
        if (!readDelimitedString('"', table.emplace_back().name, stream_))
            return false;
    stream_.word();
    for (ProtocolContrasts::Contrast& contrast : table)
        for (int i = 0; i < protocol_.nrOfConditions() && !stream_.failed(); ++i)
            contrast.weights.push_back(stream_.integer());
    stream_.word();
    for (ProtocolContrasts::Contrast& contrast : table)
        contrast.selectionState = stream_.integer();
    stream_.word();
    for (ProtocolContrasts::Contrast& contrast : table)
        contrast.color = color();
    return !stream_.failed();
}

void RTPHeaderParser::readPlotColors() {
    protocol_.backgroundColor = keyAndColor();
    protocol_.textColor = keyAndColor();
    protocol_.timeCourseColor = keyAndColor();
    protocol_.timeCourseThick = keyAndInteger();
}

void RTPHeaderParser::startStates() {
    const size_t predictors = state_.rtpPrevious.size();
    state_.rtpCurrent.assign(predictors, 0.0f);
    state_.rtpWeights.assign(predictors, 0.0f);
    state_.holds.assign(protocol_.conditions.size(), false);
    if (!state_.rtpHasBaseline)
        return;
    const bool volumes = protocol_.resolutionOfTime == ResolutionOfTime::Volumes;
    state_.holds[0] = protocol_.addInterval(0, volumes ? 1 : 0, openEnd);
}

RgbColor RTPHeaderParser::color() {
    const int red = stream_.integer();
    const int green = stream_.integer();
    const int blue = stream_.integer();
    return validColor(red, green, blue);
}

RgbColor RTPHeaderParser::keyAndColor() {
    stream_.word();
    return color();
}

int RTPHeaderParser::keyAndInteger() {
    stream_.word();
    return stream_.integer();
}

bool RTPHeaderParser::countIsPossible(int count, qsizetype shortest) {
    return count >= 0 && count <= (length_ - stream_.position()) / shortest;
}

bool RTPHeaderParser::damaged(const QString& what) {
    parsing_.message = QStringLiteral("ERROR: RTP file is damaged: %1.").arg(what);
    return false;
}

} // namespace

HeaderParsing parseRTPHeader(const QString& text, StimulationProtocol& protocol,
                             RealTimeProtocolState& state) {
    return RTPHeaderParser(text, protocol, state).parse();
}
