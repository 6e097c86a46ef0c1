// The stimulation protocol in memory: which condition holds at each moment of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>
#include <vector>

inline constexpr const char* untitledExperiment = "<untitled>";

/// Most conditions, or contrasts, that a file may declare. A design has 50 columns, the record of a
/// condition is large, and every volume looks through all of them.
inline constexpr int maximumTableEntries = 1000;

/// One condition: a fixed record with room for 300 intervals, so that an interval can be added
/// during a run without allocation.
struct ProtocolCondition {
    static constexpr int maximumIntervals = 300;
    static constexpr int maximumNameLength = 255;
    static constexpr int maximumButtonsLength = 10;

    QString name; ///< at most 255 characters
    int nrOfIntervals = 0;
    std::array<int, maximumIntervals> from{}; ///< bounds in the protocol's unit, both inclusive
    std::array<int, maximumIntervals> to{};
    RgbColor color;
    std::array<int, maximumIntervals> timeOfResponse{}; ///< this and the following: -1 when none
    std::array<int, maximumIntervals> reactionTime{};
    std::array<int, maximumIntervals> accuracy{};
    std::array<int, maximumIntervals> omission{};
    std::array<std::array<char, maximumButtonsLength + 1>, maximumIntervals> buttons{};
    bool lossReported = false; ///< the operator knows that the record is full

    /// Sets the buttons of an interval below maximumIntervals; the first 10 characters are kept.
    void setButtons(size_t interval, const QString& text);
};

enum class ResolutionOfTime { Volumes = 1, Milliseconds = 2 };

struct StimulationProtocol {
    int protocolFileVersion = 2;
    ResolutionOfTime resolutionOfTime = ResolutionOfTime::Volumes;
    QString experimentName = untitledExperiment;
    RgbColor backgroundColor{0, 0, 0};
    RgbColor textColor{255, 255, 255};
    RgbColor timeCourseColor{255, 255, 255};
    RgbColor referenceFuncColor{80, 80, 80};
    int timeCourseThick = 3;
    int referenceFuncThick = 2;
    std::vector<ProtocolCondition> conditions;
    std::vector<ProtocolCondition> responseConditions;
    bool hasResponses = false;
    int coveredTime = 0; ///< how far the protocol is known, scaled to milliseconds
    bool acceptNewConditions = true;
    QStringList unexpectedConditions; ///< unknown names that the operator has been told of

    /// Segment values for the project file, from a protocol in volumes.
    int SegmentSize = 10;
    int SegmentOffset = 0;

    /// Which of the three sources the run uses; at most one is not empty.
    QString protocolPath; ///< .prt
    QString realTimeProtocolPath;
    QString tdatPath;

    [[nodiscard]] int nrOfConditions() const { return int(conditions.size()); }
    [[nodiscard]] int nrOfResponseConditions() const { return int(responseConditions.size()); }

    /// Frees both tables; the experiment is untitled again.
    void clearProtocol();
    /// Index of an exact name. An unknown name is appended when acceptNewConditions is set; else
    /// the result is -1, after a warning that holds nobody up, the first time for this name.
    int conditionIndex(const QString& name);
    /// The same for the response table, always appending.
    int responseConditionIndex(const QString& name);
    /// Appends one interval without responses. A full record or an index out of range leaves the
    /// table as it is: the first such loss of a condition is reported, in a box that holds nobody
    /// up, and false returned.
    bool addInterval(int condition, int from, int to);
    bool addResponseInterval(int condition, int from, int to);
    /// Writes into the last interval of a response condition; without one it does nothing.
    void setResponseValues(int condition, int timeOfResponse, int reactionTime, int accuracy,
                           int omission, const QString& buttons);
};

/// True when the run gets its protocol while it is measured.
[[nodiscard]] bool isProtocolPathSet(const QString& path); // neither empty nor "<none>"
