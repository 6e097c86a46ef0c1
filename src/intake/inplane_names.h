// Names of the files of an inplane overlay series.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <functional>

/// Name of the file that holds a slice, counted from 0.
using InplaneNames = std::function<QString(int slice)>;

/// The first file's name as the settings state it, without a folder.
[[nodiscard]] QString firstInplaneName(const RunSettings& settings);

/// "I.001", "I.002" and so on, whatever the first file is called.
[[nodiscard]] InplaneNames threeDigitNames();

/// The series prefix, the number from the first one on, not padded, and the extension.
[[nodiscard]] InplaneNames seriesNames(const RunSettings& settings);

/// The part after the last "DicomNameDelimiter:" counts up and keeps its width. Empty after a
/// message when the delimiter is missing or no number follows it.
[[nodiscard]] InplaneNames delimitedNames(const RunSettings& settings);

/// "i%1.MRDC.%2", whose two numbers both count up. Empty after a message for another name.
[[nodiscard]] InplaneNames twoNumberNames(const RunSettings& settings);
