// The text of a settings file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

inline constexpr int writtenFileVersion = 4;

struct WrittenSettings {
    QString text;
    bool dataTypeSupported = true; ///< else the text ends with the data type
};

/// All entries that the values call for. A data type of "ANALYZE_DRIN" is corrected to
/// "PHILIPS_ANALYZE_DRIN" in `settings` after it has been written.
[[nodiscard]] WrittenSettings settingsText(RunSettings& settings);
