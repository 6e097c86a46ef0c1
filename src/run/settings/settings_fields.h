// The entries of a settings file in file order, for both reader and writer.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <limits>
#include <optional>
#include <span>
#include <variant>

/// How a value is written in the file.
enum class ValueKind {
    None,         ///< no text: an effect, or a blank line between groups
    Integer,      ///< one token
    Flag,         ///< an integer; 0 is false
    FlagOne,      ///< an integer; only 1 is true
    FlagPositive, ///< an integer; 1 or more is true
    Real,         ///< one token
    Word,         ///< one token, without quotes
    Text,         ///< quoted, kept as it is
    Path,         ///< quoted path of a file
    Folder,       ///< quoted path of a folder, which gets a "/" at its end
    WatchFolder,  ///< a watch folder, or a file that lists several
    Protocol,     ///< one of the three protocol keys with its quoted path
    MergeFiles,   ///< quoted names, then the optional keys of the common model
};

enum class Presence {
    Required,
    OptionalAtEnd, ///< may be absent at the end of the file; then the default applies
    SkipsOtherKey, ///< optional; another key in its place is skipped with its value
    /// May be absent at the end of the file, and whatever else stands there is left alone; written
    /// only where it isn't the default.
    Extension,
};

/// Action after a value whose key was right.
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
    /// Values outside can't be used by a run and are rejected.
    std::optional<ValueRange> range;
    /// Rejects 0 with its own message, and with it words that are not numbers.
    bool refusesZero = false;
    Presence presence = Presence::Required;
    int firstVersion = 1;
    int lastVersion = std::numeric_limits<int>::max();
    /// Further condition on the values before this entry; none when null.
    bool (*condition)(const RunSettings&) = nullptr;
    bool blankLineAfter = false;
    /// Write the settings folder at the start of the path as "./".
    bool writtenRelative = false;

    /// True when a file with these values has the entry.
    [[nodiscard]] bool applies(const RunSettings& settings) const;
};

/// All entries in file order.
[[nodiscard]] std::span<const SettingsField> settingsFields();

/// True for the values of "DataType:" that a settings file may have, in any case.
[[nodiscard]] bool isSupportedDataType(const QString& dataType);
