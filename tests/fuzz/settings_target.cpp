// Settings files, and the lists of watch folders that they name.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "run/settings/settings_reader.h"
#include "run/settings/settings_writer.h"
#include "run/settings/watch_folders.h"

namespace {

bool readSettings(RunSettings& settings, SettingsUse use, const QString& text) {
    settings.settingsFilePath = "fuzz/fuzz.vco";
    settings.settingsFileDir = "fuzz/";
    const SettingsReport report(settings.settingsFilePath, use, [] {});
    return SettingsReader(settings, report, text).read();
}

// Inspection only: for a run the folders of the text would be created, wherever they lie.
bool run(std::span<const uint8_t> bytes) {
    const QString text = QString::fromUtf8(bytesAsText(bytes));
    static_cast<void>(parseWatchFolderList(text, "fuzz/"));
    RunSettings settings;
    // The writer's form of a multi-run project is not one that can be read.
    if (!readSettings(settings, SettingsUse::Inspection, text) || settings.MergeType)
        return false;
    const WrittenSettings written = settingsText(settings);
    RunSettings again;
    require(readSettings(again, SettingsUse::Inspection, written.text), "written settings read");
    require(settingsText(again).text == written.text, "written settings stay as they are");
    return true;
}

const bool added = addFuzzTarget({"settings", run});

} // namespace
