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

/// Largest number of conditions, or contrasts, in a file. A design has 50 columns, the record of a
/// condition is large, and every volume searches all of them.
inline constexpr int maximumTableEntries = 1000;

/// One condition: a fixed record with room for 300 intervals, so that adding an interval during a
/// run doesn't allocate.
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
    bool lossReported = false; ///< a full record has been reported

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
    int coveredTime = 0; ///< time up to which the protocol is known, scaled to milliseconds
    bool acceptNewConditions = true;
    QStringList unexpectedConditions; ///< unknown names already reported

    /// Segment values for the project file, from a protocol in volumes.
    int SegmentSize = 10;
    int SegmentOffset = 0;

    /// Which of the three sources the run uses; at most one is not empty.
    QString protocolPath; ///< .prt
    QString realTimeProtocolPath;
    QString tdatPath;

    [[nodiscard]] int nrOfConditions() const { return int(conditions.size()); }
    [[nodiscard]] int nrOfResponseConditions() const { return int(responseConditions.size()); }

    /// Frees both tables and resets the experiment's name.
    void clearProtocol();
    /// Index of an exact name. An unknown name is appended when acceptNewConditions is set; else
    /// the result is -1, with a modeless warning the first time.
    int conditionIndex(const QString& name);
    /// The same for the response table, but always appends.
    int responseConditionIndex(const QString& name);
    /// Appends one interval without responses. False, with the table unchanged, when the record is
    /// full or the index out of range; the first loss of a condition is reported in a modeless box.
    bool addInterval(int condition, int from, int to);
    bool addResponseInterval(int condition, int from, int to);
    /// Sets the values of the last interval of a response condition; does nothing without one.
    void setResponseValues(int condition, int timeOfResponse, int reactionTime, int accuracy,
                           int omission, const QString& buttons);
};

/// True when a path is set.
[[nodiscard]] bool isProtocolPathSet(const QString& path); // neither empty nor "<none>"

/// The names of the conditions, in their order.
[[nodiscard]] QStringList conditionNames(const StimulationProtocol& protocol);
/// The name of a condition; empty where no condition has this index.
[[nodiscard]] QString conditionName(const StimulationProtocol& protocol, int index);

/// Index of the condition that holds at a volume, counted from 0 among the analysed ones; -1 when
/// none does. In volumes an interval covers volumes from - 1 to to - 1; in milliseconds it holds
/// when the volume's start, volumeIndex times TR (milliseconds), lies in it, both bounds included.
/// Where intervals of two conditions overlap the one that stands first in the protocol wins.
[[nodiscard]] int conditionAtVolume(const StimulationProtocol& protocol, int volumeIndex, float TR);
