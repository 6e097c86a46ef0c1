// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/stimulation_protocol.h"

#include "base/messages.h"
#include "base/text_reading.h"

namespace {

using ConditionTable = std::vector<ProtocolCondition>;

QString asConditionName(const QString& name) {
    return name.left(ProtocolCondition::maximumNameLength);
}

int indexOf(const ConditionTable& table, const QString& name) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const ProtocolCondition& c) { return c.name == name; });
    return found == table.end() ? -1 : int(found - table.begin());
}

int append(ConditionTable& table, const QString& name) {
    table.emplace_back().name = name;
    return int(table.size()) - 1;
}

bool appendInterval(ConditionTable& table, int index, int from, int to) {
    if (index < 0 || size_t(index) >= table.size())
        return false;
    ProtocolCondition& condition = table[size_t(index)];
    const auto last = size_t(condition.nrOfIntervals);
    if (condition.nrOfIntervals >= ProtocolCondition::maximumIntervals) {
        if (!condition.lossReported)
            showModelessWarning(
                QStringLiteral("WARNING: Condition \"%1\" has more than 300 intervals; the "
                               "first 300 are used.")
                    .arg(condition.name));
        condition.lossReported = true;
        return false;
    }
    condition.from[last] = from;
    condition.to[last] = to;
    condition.timeOfResponse[last] = -1;
    condition.reactionTime[last] = -1;
    condition.accuracy[last] = -1;
    condition.omission[last] = -1;
    condition.buttons[last].fill('\0');
    ++condition.nrOfIntervals;
    return true;
}

bool holdsAt(const ProtocolCondition& condition, double moment) {
    for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
        if (condition.from[i] <= moment && moment <= condition.to[i])
            return true;
    return false;
}

} // namespace

void ProtocolCondition::setButtons(size_t interval, const QString& text) {
    std::array<char, maximumButtonsLength + 1>& target = buttons[interval];
    const QByteArray bytes = text.toLatin1().left(maximumButtonsLength);
    target.fill('\0');
    std::copy(bytes.begin(), bytes.end(), target.begin());
}

void StimulationProtocol::clearProtocol() {
    // Also frees the memory: a record is large.
    std::vector<ProtocolCondition>().swap(conditions);
    std::vector<ProtocolCondition>().swap(responseConditions);
    hasResponses = false;
    unexpectedConditions.clear();
    experimentName = untitledExperiment;
}

int StimulationProtocol::conditionIndex(const QString& name) {
    const QString known = asConditionName(name);
    const int index = indexOf(conditions, known);
    if (index >= 0)
        return index;
    if (acceptNewConditions)
        return append(conditions, known);
    // A log repeats its names, and a damaged one may have any number of them.
    constexpr qsizetype mostWarnings = 5;
    if (unexpectedConditions.contains(known) || unexpectedConditions.size() >= mostWarnings)
        return -1;
    unexpectedConditions << known;
    showModelessWarning(
        QStringLiteral("WARNING: Unexpected condition \"%1\" found!\n\nThis condition was "
                       "not declared in header and will be ignored.")
            .arg(shortened(name)));
    return -1;
}

int StimulationProtocol::responseConditionIndex(const QString& name) {
    const QString known = asConditionName(name);
    const int index = indexOf(responseConditions, known);
    return index >= 0 ? index : append(responseConditions, known);
}

bool StimulationProtocol::addInterval(int condition, int from, int to) {
    return appendInterval(conditions, condition, from, to);
}

bool StimulationProtocol::addResponseInterval(int condition, int from, int to) {
    return appendInterval(responseConditions, condition, from, to);
}

void StimulationProtocol::setResponseValues(int condition, int timeOfResponse, int reactionTime,
                                            int accuracy, int omission, const QString& buttons) {
    if (condition < 0 || condition >= nrOfResponseConditions())
        return;
    ProtocolCondition& table = responseConditions[size_t(condition)];
    if (table.nrOfIntervals < 1)
        return;
    const auto last = size_t(table.nrOfIntervals) - 1;
    table.timeOfResponse[last] = timeOfResponse;
    table.reactionTime[last] = reactionTime;
    table.accuracy[last] = accuracy;
    table.omission[last] = omission;
    table.setButtons(last, buttons);
}

bool isProtocolPathSet(const QString& path) {
    return !path.isEmpty() && path != "<none>";
}

int conditionAtVolume(const StimulationProtocol& protocol, int volumeIndex, float TR) {
    if (volumeIndex < 0)
        return -1;
    const double moment = protocol.resolutionOfTime == ResolutionOfTime::Volumes
                              ? volumeIndex + 1.0
                              : double(volumeIndex) * double(TR);
    for (int condition = 0; condition < protocol.nrOfConditions(); ++condition)
        if (holdsAt(protocol.conditions[size_t(condition)], moment))
            return condition;
    return -1;
}

QStringList conditionNames(const StimulationProtocol& protocol) {
    QStringList names;
    for (const ProtocolCondition& condition : protocol.conditions)
        names << condition.name;
    return names;
}

QString conditionName(const StimulationProtocol& protocol, int index) {
    return index >= 0 && index < protocol.nrOfConditions() ? protocol.conditions[size_t(index)].name
                                                           : QString();
}
