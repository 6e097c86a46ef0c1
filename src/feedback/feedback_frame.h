// What the subject sees at one moment, as a plain description that can be drawn at any size.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_levels.h"

#include <QStringList>

struct FeedbackFrame {
    enum class Kind {
        Idle,        ///< no feedback yet
        Thermometer, ///< one, or one for each region of a pair
        Classifier,  ///< one, with slightly other geometry
        TimeCourse,  ///< the curve of a region, which the display draws itself
    };
    struct Thermometer {
        int level = 0;  ///< in steps, negative below the base line
        int target = 0; ///< a box at this level; none for 0 and below
        bool operator==(const Thermometer&) const = default;
    };

    Kind kind = Kind::Idle;
    std::vector<Thermometer> thermometers;
    int baseLevel = 0;       ///< of the base line, 0 to 10; no line at 0
    bool levelsShown = true; ///< else the boxes stay empty
    bool arrowMode = false;  ///< no boxes of targets
    bool arrowShown = false; ///< at the target of the first thermometer
    QString instruction;     ///< at the bottom; empty for none
    QStringList values;      ///< lines at the top left

    bool operator==(const FeedbackFrame&) const = default;
};

/// The frame of these values. `conditionNames` are those of the protocol.
[[nodiscard]] FeedbackFrame feedbackFrame(const FeedbackValues& values,
                                          const FeedbackChoices& choices,
                                          const VolumeTables& tables,
                                          const QStringList& conditionNames);
