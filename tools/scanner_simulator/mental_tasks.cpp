// SPDX-License-Identifier: GPL-3.0-or-later
#include "mental_tasks.h"

#include "base/file_writing.h"
#include "random_numbers.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int nrOfTasks = 3;
constexpr int nrOfOnsets = 3;
constexpr int nrOfDurations = 3;
constexpr int nrOfTrained = nrOfTasks * nrOfDurations;
constexpr double windowLength = 70.0;   ///< seconds of a letter
constexpr double responseBegin = 5.0;   ///< seconds from the start of a window to the first onset
constexpr double unit = 10.0;           ///< seconds between onsets, and between durations
constexpr double longestCode = 50.0;    ///< seconds to the end of the last and longest task
constexpr double trainingRest = 20.0;   ///< seconds
constexpr int slowestRepetition = 5000; ///< milliseconds; a slower one has no volume of rest

constexpr char letters[] = "_ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// -1 for a character that has no code.
int codeOf(QChar character) {
    const QChar letter = character == ' ' ? QChar('_') : character.toUpper();
    return int(QString(letters).indexOf(letter));
}

int volumesOf(const SimulationOptions& options, double seconds) {
    return int(std::lround(seconds * 1000.0 / std::max(1, options.repetitionTime)));
}

/// Volumes of a trial of the training without its rest; `duration` from 0.
int volumesOfTrial(const SimulationOptions& options, int duration) {
    return volumesOf(options, unit * (duration + 1));
}

std::vector<SimulatedCondition> spellingProtocol(const SimulationOptions& options) {
    SimulatedCondition rest{"Rest", {120, 120, 120}, {}};
    SimulatedCondition spelling{"Spelling", {255, 130, 50}, {}};
    int next = 1; // first volume that has no condition yet
    for (const SpelledLetter& letter : spelledLetters(options)) {
        const int first = letter.from + volumesOf(options, responseBegin);
        const int last = first + volumesOf(options, longestCode) - 1;
        rest.intervals.push_back({next, first - 1});
        spelling.intervals.push_back({first, last});
        next = last + 1;
    }
    rest.intervals.push_back({next, volumesOfTasks(options)});
    return {rest, spelling};
}

/// The trained conditions, from 0, of one round in which each comes once.
std::vector<int> trainingRound(RandomNumbers& random) {
    std::vector<int> order(nrOfTrained);
    std::iota(order.begin(), order.end(), 0);
    for (size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[random.bits() % i]);
    return order;
}

std::vector<SimulatedCondition> trainingProtocol(const SimulationOptions& options) {
    constexpr int colors[nrOfTasks][3] = {{255, 130, 50}, {70, 150, 255}, {90, 220, 90}};
    std::vector<SimulatedCondition> conditions = {{"Rest", {120, 120, 120}, {}}};
    for (int trained = 0; trained < nrOfTrained; ++trained) {
        const int* const color = colors[trained / nrOfDurations];
        const int part = trained % nrOfDurations + 2; // of 4: longer ones are brighter
        conditions.push_back({QString("Task%1_%2s")
                                  .arg(trained / nrOfDurations + 1)
                                  .arg(int(unit) * (trained % nrOfDurations + 1)),
                              {color[0] * part / 4, color[1] * part / 4, color[2] * part / 4},
                              {}});
    }
    const int rest = volumesOf(options, trainingRest);
    conditions[0].intervals.push_back({1, rest});
    int next = rest + 1;
    RandomNumbers random(options.seed);
    for (int round = 0; round < options.trainingTrials; ++round)
        for (const int trained : trainingRound(random)) {
            const int end = next + volumesOfTrial(options, trained % nrOfDurations);
            conditions[size_t(trained) + 1].intervals.push_back({next, end - 1});
            conditions[0].intervals.push_back({end, end + rest - 1});
            next = end + rest;
        }
    return conditions;
}

} // namespace

int volumesOfLetter(const SimulationOptions& options) {
    return volumesOf(options, windowLength);
}

std::vector<SpelledLetter> spelledLetters(const SimulationOptions& options) {
    std::vector<SpelledLetter> spelled;
    const int delay = volumesOf(options, responseBegin);
    int from = 1;
    for (const QChar character : options.spelledText) {
        const int code = std::max(0, codeOf(character));
        const int onset = code / nrOfDurations % nrOfOnsets;
        const double start = (from - 1 + delay) * options.repetitionTime / 1000.0 + unit * onset;
        spelled.push_back({QChar(letters[code]),
                           code,
                           from,
                           code / (nrOfOnsets * nrOfDurations),
                           {start, start + unit * (code % nrOfDurations + 1)}});
        from += volumesOfLetter(options);
    }
    return spelled;
}

int volumesOfTasks(const SimulationOptions& options) {
    const auto bounded = [](qsizetype count) { return int(std::clamp<qsizetype>(count, 0, 1000)); };
    if (!options.spelledText.isEmpty())
        return bounded(options.spelledText.size()) * volumesOfLetter(options) + 1;
    const int rest = volumesOf(options, trainingRest);
    int round = nrOfTrained * rest;
    for (int duration = 0; duration < nrOfDurations; ++duration)
        round += nrOfTasks * volumesOfTrial(options, duration);
    return rest + bounded(options.trainingTrials) * round;
}

QString problemOfTasks(const SimulationOptions& options) {
    for (const QChar character : options.spelledText)
        if (codeOf(character) < 0)
            return QString("There is no code for \"%1\"; letters and blanks can be spelled.")
                .arg(character);
    if (!options.spelledText.isEmpty() && options.trainingTrials > 0)
        return "A run is either a training or spells a text.";
    if (options.repetitionTime > slowestRepetition)
        return QString("Tasks of 10 s need a TR up to %1 ms.").arg(slowestRepetition);
    if (options.patternStrength > 0.0)
        return "The fine pattern answers to the blocks of Faces and Houses only.";
    const int needed = volumesOfTasks(options) + options.nrOfVolumesToSkip;
    if (options.nrOfVolumes != needed)
        return QString("The tasks take %1 volumes, those to skip included.").arg(needed);
    return {};
}

std::vector<std::vector<StimulusTime>> taskTimes(const SimulationOptions& options) {
    std::vector<std::vector<StimulusTime>> times(nrOfTasks);
    for (const SpelledLetter& letter : spelledLetters(options))
        times[size_t(letter.task)].push_back(letter.time);
    if (options.trainingTrials == 0)
        return times;
    const std::vector<SimulatedCondition> conditions = trainingProtocol(options);
    for (int trained = 0; trained < nrOfTrained; ++trained) {
        const std::vector<StimulusTime> trials =
            timesOf(conditions[size_t(trained) + 1], options.repetitionTime);
        std::vector<StimulusTime>& ofTask = times[size_t(trained / nrOfDurations)];
        ofTask.insert(ofTask.end(), trials.begin(), trials.end());
    }
    return times;
}

std::vector<SimulatedCondition> taskProtocol(const SimulationOptions& options) {
    return options.trainingTrials > 0 ? trainingProtocol(options) : spellingProtocol(options);
}

QByteArray spellingText(const SimulationOptions& options) {
    QByteArray text =
        "# What the simulated subject spells, one line for each letter.\n"
        "# letter, its code from 0 to 26, first volume of its window (analysed ones,\n"
        "# from 1), task from 1, start of the task in seconds from the start of the\n"
        "# first analysed volume, and how many seconds it is held\n";
    for (const SpelledLetter& letter : spelledLetters(options))
        text += formatted("%c %2i %5i %2i %10.3f %3.0f\n", letter.letter.toLatin1(), letter.code,
                          letter.from, letter.task + 1, letter.time.start,
                          letter.time.end - letter.time.start);
    return text;
}
