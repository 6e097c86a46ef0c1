// Reads the entries of a settings file one by one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text_reading.h"
#include "run/settings/settings_fields.h"
#include "run/settings/settings_report.h"

/// Works on the text of a file without its comments.
class SettingsReader {
public:
    SettingsReader(RunSettings& settings, const SettingsReport& report, const QString& text)
        : settings_(settings), report_(report), stream_(text) {}

    /// Reads all entries that apply. False after a message.
    [[nodiscard]] bool read();

private:
    [[nodiscard]] bool readField(const SettingsField& field);
    [[nodiscard]] bool nextKeyIs(const QString& key);
    [[nodiscard]] bool readKeyAndValue(const SettingsField& field);
    [[nodiscard]] bool readOrSkipOtherKey(const SettingsField& field);
    [[nodiscard]] bool readWatchFolder(const SettingsField& field);
    [[nodiscard]] bool readWatchFolderList();
    [[nodiscard]] bool readProtocol();
    [[nodiscard]] bool readMergeFiles(const SettingsField& field);
    [[nodiscard]] bool readMergeOptions();
    [[nodiscard]] bool readMergeOption(const QString& key, int lowest, int highest, int& value);
    [[nodiscard]] bool readMergeSubjects();
    [[nodiscard]] QString upcomingWord() const;
    /// Stores the value in its field. Returns what is wrong with it; empty if nothing.
    [[nodiscard]] QString takeValue(const SettingsField& field);
    void setToDefault(const SettingsField& field);
    void cleanValue(const SettingsField& field);
    [[nodiscard]] bool checkRange(const SettingsField& field);
    [[nodiscard]] bool reportMissing(const QString& key);

    [[nodiscard]] bool applyEffect(FieldEffect effect);
    void deriveFrom(FieldEffect effect);
    [[nodiscard]] bool checkMultiRunTarget();
    [[nodiscard]] bool createTargetFolder();
    [[nodiscard]] bool takeDataType();
    [[nodiscard]] bool checkMatrix();
    [[nodiscard]] bool checkVolumesToSkip();
    [[nodiscard]] bool checkSliceCount();
    [[nodiscard]] bool checkInplaneFolder();
    void takePixelSize();
    void clearOverlays();
    void checkMeshes();

    RunSettings& settings_;
    const SettingsReport& report_;
    TokenStream stream_;
};
