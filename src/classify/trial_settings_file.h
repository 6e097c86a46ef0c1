// The file of estimation settings that lies beside a run (SingleTrialGLMSettings.txt).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/trial_options.h"

#include <QByteArray>
#include <QString>
#include <optional>

inline const QString trialSettingsFileName = QStringLiteral("SingleTrialGLMSettings.txt");

[[nodiscard]] QByteArray trialSettingsText(const TrialOptions& options);
/// Reads by position: the value is the last word of its line. A file whose response is not the
/// standard one gives MeanResponse, since it doesn't say which other it was. Numbers are clamped to
/// their ranges. Nothing when lines are missing, a value is no number, or the version is unknown.
[[nodiscard]] std::optional<TrialOptions> parseTrialSettings(const QString& text);
