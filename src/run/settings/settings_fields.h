// The table of a settings file: every entry in file order, for the reader and the writer alike.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <limits>
#include <optional>
#include <span>
#include <variant>

/// How a value is written in the file.
enum class ValueKind {
    None,         ///< no text at all: an effect or a blank line between groups
    Integer,      ///< one token
    Flag,         ///< an integer; 0 is false
    FlagOne,      ///< an integer; only 1 is true
    FlagPositive, ///< an integer; 1 or more is true
    Real,         ///< one token
    Word,         ///< one token, without quotes
    Text,         ///< quoted, kept as it stands
    Path,         ///< quoted path of a file
    Folder,       ///< quoted path of a folder, which gets a "/" at its end
    WatchFolder,  ///< a watch folder, or a file that lists several
    Protocol,     ///< one of the three protocol keys with its quoted path
    MergeFiles,   ///< quoted names up to the end of the file
};

enum class Presence {
    Required,
    UnlessEnded,   ///< absent when the file has ended; the value is its default then
    OverOtherKeys, ///< with another key in its place, that key and its value are lost
};

/// What follows from a value, once its key has been found right.
enum class FieldEffect {
    None,
    MultiRunTarget,
    TargetFolder,
    DataType,
    PFile,
    FirstFile,
    DicomNames,
    TimeOut,
    MatrixSizes,
    VolumesToSkip,
    SliceCount,
    ProjectName,
    ForceTRDelay,
    InplaneFlag,
    InplaneFolder,
    InplaneFirstFile,
    ClearOverlays,
    VMRGroup,
    SRFGroup,
    FeedbackFolder,
};

using SettingsMember = std::variant<std::monostate, int RunSettings::*, bool RunSettings::*,
                                    float RunSettings::*, QString RunSettings::*>;

struct ValueRange {
    double lowest;
    double highest;
};

struct SettingsField {
    ValueKind kind = ValueKind::None;
    QString key;
    SettingsMember member;
    FieldEffect effect = FieldEffect::None;
    /// Values outside are refused, since the run could not work with them.
    std::optional<ValueRange> range;
    /// 0 has a refusal of its own, which also serves words that are no numbers.
    bool refusesZero = false;
    Presence presence = Presence::Required;
    int firstVersion = 1;
    int lastVersion = std::numeric_limits<int>::max();
    /// Further condition, by the values before this entry; none when null.
    bool (*condition)(const RunSettings&) = nullptr;
    bool blankLineAfter = false;
    /// The settings folder at the start of a path is written as "./".
    bool writtenRelative = false;

    /// True when a file with these values has the entry.
    [[nodiscard]] bool applies(const RunSettings& settings) const;
};

/// All entries in file order.
[[nodiscard]] std::span<const SettingsField> settingsFields();

/// True for the values of "DataType:" that a settings file may have, in any case.
[[nodiscard]] bool isSupportedDataType(const QString& dataType);
