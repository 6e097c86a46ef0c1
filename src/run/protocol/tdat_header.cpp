// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"
#include "run/protocol/tdat_protocol.h"

#include <array>
#include <utility>

namespace {

constexpr int longestTR = 3600 * 1000; // milliseconds, as in a settings file
constexpr int versionWithColorsInTable = 5;

int integerOf(const QString& word) {
    return TokenStream(word).integer();
}

// Three numbers separated by commas; grey when invalid.
RgbColor colorOf(const QString& text) {
    const QStringList parts = text.split(',');
    std::array<int, 3> channels{128, 128, 128};
    for (qsizetype i = 0; i < 3 && i < parts.size(); ++i) {
        bool isNumber = false;
        const int channel = parts[i].toInt(&isNumber);
        if (isNumber)
            channels[size_t(i)] = channel;
    }
    return validColor(channels[0], channels[1], channels[2]);
}

class TDATHeaderParser {
public:
    TDATHeaderParser(const QString& text, StimulationProtocol& protocol, TDATState& state,
                     TDATSettings& settings)
        : text_(text), stream_(text), protocol_(protocol), state_(state), settings_(settings) {}

    HeaderParsing parse();

private:
    bool readEntry();
    void takeEntry(const QString& key, const QString& value);
    bool takeTR(const QString& value);
    bool readConditionTable();
    bool readCondition();
    bool readContrastTable();
    void readContrast();
    bool readWeight(std::vector<int>& weights);
    bool takeColors();
    [[nodiscard]] int indexOf(const QString& name) const;
    QString word() { return stream_.word().toUpper(); }
    void skipWords(int count) {
        for (int i = 0; i < count; ++i)
            stream_.word();
    }
    bool failed(const QString& message) {
        parsing_.message = message;
        return false;
    }
    bool tooMany(const QString& table) {
        return failed(QStringLiteral("ERROR: %1 of .tdat file has more than %2 entries.")
                          .arg(table)
                          .arg(maximumTableEntries));
    }

    const QString& text_;
    TokenStream stream_;
    StimulationProtocol& protocol_;
    TDATState& state_;
    TDATSettings& settings_;
    HeaderParsing parsing_;
    bool hasConditionTable_ = false;
    bool entryBegun_ = false; ///< the first two words of an entry were read by the row before it
};

HeaderParsing TDATHeaderParser::parse() {
    protocol_.clearProtocol();
    protocol_.acceptNewConditions = true;
    protocol_.resolutionOfTime = ResolutionOfTime::Milliseconds;
    state_ = {};
    settings_ = {};
    parsing_.length = text_.size();
    while (!stream_.atEnd()) {
        const QString next = word();
        if (next == "SCAN") {
            parsing_.length = text_.lastIndexOf('\n', stream_.position() - 1) + 1;
            break;
        }
        if (next == "HEADER" && !readEntry())
            return parsing_;
    }
    if (state_.fileVersion < versionWithColorsInTable && !takeColors())
        return parsing_;
    // From here on every condition has been declared.
    protocol_.acceptNewConditions = false;
    parsing_.good = true;
    return parsing_;
}

bool TDATHeaderParser::readEntry() {
    const QString key = word();
    const QString value = word();
    if (key == "SCANNERVOLUMEDURATION")
        return takeTR(value);
    if (key == "CONDITIONTABLEBEGIN")
        return readConditionTable();
    if (key == "CONTRASTTABLEBEGIN")
        return readContrastTable();
    takeEntry(key, value);
    return true;
}

void TDATHeaderParser::takeEntry(const QString& key, const QString& value) {
    if (key == "TDATFILEVERSION")
        state_.fileVersion = integerOf(value);
    else if (key == "RUNCONDITION")
        protocol_.experimentName = value;
    else if (key == "FMRIANALYSISOPTIONS")
        state_.analysisOptions = value;
    else if (key == "MOTIONCORRECTION")
        settings_.motionCorrection = value == "1";
    else if (key == "RESPONSEWINDOWFORMAT")
        protocol_.hasResponses = value == "1";
    else if (key == "FMRIANALYSISTESTS")
        state_.tdatEventWord = value.section(':', 1, 1);
}

bool TDATHeaderParser::takeTR(const QString& value) {
    const int TR = integerOf(value);
    if (TR < 1 || TR > longestTR)
        return failed(QStringLiteral("ERROR: SCANNERVOLUMEDURATION of .tdat file is no duration in "
                                     "milliseconds: \"%1\" !")
                          .arg(shortened(value)));
    settings_.TR = TR;
    return true;
}

bool TDATHeaderParser::readConditionTable() {
    skipWords(4);
    hasConditionTable_ = true;
    protocol_.conditions.clear();
    state_.otherConditions.clear();
    for (;;) {
        skipWords(2);
        const QString kind = word();
        if (kind == "CONDITIONTABLEEND")
            return true;
        if (kind != "CONDITION")
            return failed("ERROR: Severe parsing error in ConditionTable: Expecting token "
                          "\"CONDITION\".");
        if (protocol_.nrOfConditions() + state_.otherConditions.size() >= maximumTableEntries)
            return tooMany("ConditionTable");
        if (!readCondition())
            return failed("FATAL ERROR: Insufficient memory!");
    }
}

bool TDATHeaderParser::readCondition() {
    skipWords(1);
    const QString name = word();
    skipWords(1);
    const RgbColor color = colorOf(word());
    if (word() != "YES") {
        state_.otherConditions << name;
        return true;
    }
    const std::vector<ProtocolCondition>& table = protocol_.conditions;
    // The table grows by doubling, with both copies in memory for a moment.
    if (table.size() == table.capacity() &&
        !memoryIsAvailable(3 * (table.size() + 1), sizeof(ProtocolCondition)))
        return false;
    const int index = protocol_.conditionIndex(name);
    if (index >= 0)
        protocol_.conditions[size_t(index)].color = color;
    return true;
}

bool TDATHeaderParser::readContrastTable() {
    protocol_.acceptNewConditions = false;
    state_.contrasts = {ProtocolContrasts::Source::Table, 0, {}};
    skipWords(4);
    for (;;) {
        if (!std::exchange(entryBegun_, false))
            skipWords(2);
        const QString kind = word();
        if (kind == "CONTRASTTABLEEND")
            return true;
        if (kind != "CONTRAST")
            return failed("ERROR: Severe parsing error in ContrastTable: Expecting token "
                          "\"CONTRAST\".");
        if (state_.contrasts.table.size() >= size_t(maximumTableEntries))
            return tooMany("ContrastTable");
        readContrast();
    }
}

void TDATHeaderParser::readContrast() {
    ProtocolContrasts::Contrast& contrast = state_.contrasts.table.emplace_back();
    skipWords(1);
    contrast.name = word();
    contrast.color = colorOf(word());
    contrast.weights.assign(protocol_.conditions.size(), 0);
    skipWords(2);
    while (readWeight(contrast.weights))
        continue;
}

// A weight and the name of its condition. A row may list only some conditions: the next entry of
// the header ends it.
bool TDATHeaderParser::readWeight(std::vector<int>& weights) {
    const QString weight = word();
    entryBegun_ = weight == "HEADER";
    if (entryBegun_)
        return false;
    const QString name = word();
    entryBegun_ = name == "HEADER";
    if (entryBegun_ || name.isEmpty())
        return false;
    if (state_.otherConditions.contains(name))
        return true;
    const int index = protocol_.conditionIndex(name);
    if (index >= 0 && size_t(index) < weights.size())
        weights[size_t(index)] = integerOf(weight);
    return true;
}

// Entries name:r,g,b; of a file of an older version. Without a condition table they declare the
// conditions.
bool TDATHeaderParser::takeColors() {
    const bool declares = !hasConditionTable_ && protocol_.acceptNewConditions;
    const QStringList entries = state_.analysisOptions.split(';', Qt::SkipEmptyParts);
    if (entries.size() > maximumTableEntries)
        return tooMany("FMRIANALYSISOPTIONS");
    for (const QString& entry : entries) {
        const QString name = entry.section(':', 0, 0);
        const QString color = entry.section(':', 1, 1);
        if (color.isEmpty())
            continue;
        const int index = declares ? protocol_.conditionIndex(name) : indexOf(name);
        if (index >= 0)
            protocol_.conditions[size_t(index)].color = colorOf(color);
    }
    return true;
}

int TDATHeaderParser::indexOf(const QString& name) const {
    for (int i = 0; i < protocol_.nrOfConditions(); ++i)
        if (protocol_.conditions[size_t(i)].name == name)
            return i;
    return -1;
}

} // namespace

HeaderParsing parseTDATHeader(const QString& text, StimulationProtocol& protocol, TDATState& state,
                              TDATSettings& settings) {
    return TDATHeaderParser(text, protocol, state, settings).parse();
}
