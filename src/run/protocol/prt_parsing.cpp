// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"
#include "base/text_reading.h"
#include "run/protocol/prt_file.h"

#include <limits>

namespace {

constexpr int maximumQuotedButtons = 255;
// A name, a count, a key and three numbers, with their separators.
constexpr qsizetype shortestCondition = 11;
// A key and a count.
constexpr qsizetype shortestResponseCondition = 3;

class PRTParser {
public:
    PRTParser(const QString& text, StimulationProtocol& protocol)
        : stream_(text), length_(text.size()), protocol_(protocol) {}

    PRTParsing parse(bool withResponses);

private:
    bool readHeader();
    void readResolution();
    bool readConditions();
    bool readCondition(ProtocolCondition& condition);
    bool readResponseConditions();
    bool readResponseCondition(ProtocolCondition& condition);
    void readResponseEvent(bool keep);
    RgbColor keyAndColor();
    RgbColor color();
    int keyAndInteger();
    /// The next word, without consuming it.
    QString nextWord();
    /// The next line that is not blank.
    QString nextLine();
    /// True when the rest of the text and memory have room for that many records.
    bool countIsPossible(int count, qsizetype shortest);
    bool isRoomLeft(const ProtocolCondition& condition);
    bool damaged(const QString& what);
    void takeSegments();

    TokenStream stream_;
    qsizetype length_;
    StimulationProtocol& protocol_;
    PRTParsing parsing_;
};

PRTParsing PRTParser::parse(bool withResponses) {
    protocol_.clearProtocol();
    if (readHeader() && readConditions()) {
        if (protocol_.resolutionOfTime == ResolutionOfTime::Volumes)
            takeSegments();
        // Protocols written by hand often lack this table.
        if (withResponses && !stream_.atEnd() && !readResponseConditions() &&
            parsing_.result == PRTResult::Good)
            damaged("the response table can not be read");
    }
    return parsing_;
}

bool PRTParser::readHeader() {
    protocol_.protocolFileVersion = 1;
    protocol_.resolutionOfTime = ResolutionOfTime::Volumes;
    // Without a version line this word is the key of the experiment.
    if (stream_.word() == "FileVersion:") {
        protocol_.protocolFileVersion = stream_.integer();
        readResolution();
    }
    protocol_.experimentName = trimFileText(stream_.restOfLine());
    protocol_.backgroundColor = keyAndColor();
    protocol_.textColor = keyAndColor();
    protocol_.timeCourseColor = keyAndColor();
    protocol_.timeCourseThick = keyAndInteger();
    protocol_.referenceFuncColor = keyAndColor();
    protocol_.referenceFuncThick = keyAndInteger();
    return !stream_.failed() || damaged("its header can not be read");
}

// Advances past the key of the experiment. Some files of version 1 have a version line but no line
// for the resolution.
void PRTParser::readResolution() {
    if (protocol_.protocolFileVersion < 2 && tokensAgree(nextWord(), "Experiment:")) {
        stream_.word();
        return;
    }
    stream_.word();
    if (!stream_.word().startsWith('V', Qt::CaseInsensitive))
        protocol_.resolutionOfTime = ResolutionOfTime::Milliseconds;
    stream_.word();
}

bool PRTParser::readConditions() {
    const int count = keyAndInteger();
    if (stream_.failed() || count < 0)
        return damaged("the number of conditions is wrong");
    if (!countIsPossible(count, shortestCondition))
        return false;
    protocol_.conditions.reserve(size_t(count));
    for (int i = 0; i < count; ++i)
        if (!readCondition(protocol_.conditions.emplace_back()))
            return damaged(QStringLiteral("condition %1 can not be read").arg(i + 1));
    return true;
}

bool PRTParser::readCondition(ProtocolCondition& condition) {
    const QString name = nextLine();
    condition.name = name.left(ProtocolCondition::maximumNameLength);
    parsing_.hasCutText |= condition.name.size() < name.size();
    const int index = protocol_.nrOfConditions() - 1;
    const int count = stream_.integer();
    if (count < 0)
        return false;
    for (int i = 0; i < count && !stream_.failed(); ++i) {
        const int from = stream_.integer();
        const int to = stream_.integer();
        if (!stream_.failed() && isRoomLeft(condition))
            protocol_.addInterval(index, from, to);
    }
    condition.color = keyAndColor();
    return !stream_.failed();
}

bool PRTParser::readResponseConditions() {
    const int count = keyAndInteger();
    if (stream_.failed() || count < 0 || !countIsPossible(count, shortestResponseCondition))
        return false;
    protocol_.responseConditions.reserve(size_t(count));
    for (int i = 0; i < count; ++i)
        if (!readResponseCondition(protocol_.responseConditions.emplace_back()))
            return false;
    protocol_.hasResponses = count > 0;
    return true;
}

bool PRTParser::readResponseCondition(ProtocolCondition& condition) {
    const int count = keyAndInteger();
    if (count < 0)
        return false;
    for (int i = 0; i < count && !stream_.failed(); ++i)
        readResponseEvent(isRoomLeft(condition));
    return !stream_.failed();
}

void PRTParser::readResponseEvent(bool keep) {
    const int from = keyAndInteger();
    const int to = keyAndInteger();
    const int timeOfResponse = keyAndInteger();
    const int reactionTime = keyAndInteger();
    stream_.word();
    QString buttons;
    const bool buttonsRead = readDelimitedString('"', buttons, stream_, maximumQuotedButtons);
    const int omission = keyAndInteger();
    const int accuracy = keyAndInteger();
    if (!buttonsRead || stream_.failed() || !keep)
        return;
    parsing_.hasCutText |= buttons.size() > ProtocolCondition::maximumButtonsLength;
    const int index = protocol_.nrOfResponseConditions() - 1;
    protocol_.addResponseInterval(index, from, to);
    protocol_.setResponseValues(index, timeOfResponse, reactionTime, accuracy, omission, buttons);
}

RgbColor PRTParser::color() {
    RgbColor color;
    color.red = stream_.integer();
    color.green = stream_.integer();
    color.blue = stream_.integer();
    return color;
}

RgbColor PRTParser::keyAndColor() {
    stream_.word();
    return color();
}

int PRTParser::keyAndInteger() {
    stream_.word();
    return stream_.integer();
}

QString PRTParser::nextWord() {
    QString word = stream_.word();
    stream_.seek(stream_.position() - word.size());
    return word;
}

QString PRTParser::nextLine() {
    nextWord();
    return trimFileText(stream_.restOfLine());
}

bool PRTParser::countIsPossible(int count, qsizetype shortest) {
    if (count > maximumTableEntries)
        return damaged(QStringLiteral("it has more than %1 conditions").arg(maximumTableEntries));
    if (count > (length_ - stream_.position()) / shortest + 1)
        return damaged(QStringLiteral("it ends before its %1 conditions").arg(count));
    if (memoryIsAvailable(size_t(count), sizeof(ProtocolCondition)))
        return true;
    parsing_.result = PRTResult::InsufficientMemory;
    return false;
}

bool PRTParser::isRoomLeft(const ProtocolCondition& condition) {
    if (condition.nrOfIntervals < ProtocolCondition::maximumIntervals)
        return true;
    if (!parsing_.hasFullCondition)
        parsing_.fullCondition = condition.name;
    parsing_.hasFullCondition = true;
    return false;
}

bool PRTParser::damaged(const QString& what) {
    parsing_.result = PRTResult::Damaged;
    parsing_.damage = what;
    return false;
}

// SegmentSize is twice the mean length of all intervals; SegmentOffset is the end of the last
// interval that starts at volume 1.
void PRTParser::takeSegments() {
    double sum = 0.0;
    int count = 0;
    for (const ProtocolCondition& condition : protocol_.conditions)
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i) {
            sum += double(condition.to[i]) - double(condition.from[i]) + 1.0;
            ++count;
            if (condition.from[i] == 1)
                protocol_.SegmentOffset = condition.to[i];
        }
    if (count == 0)
        return;
    constexpr double largest = std::numeric_limits<int>::max();
    protocol_.SegmentSize = int(std::clamp(2.0 * sum / count + 0.5, 0.0, largest));
}

} // namespace

PRTParsing parsePRT(const QString& text, bool withResponses, StimulationProtocol& protocol) {
    return PRTParser(text, protocol).parse(withResponses);
}
