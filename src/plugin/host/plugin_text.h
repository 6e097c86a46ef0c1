// Texts that plug-ins give.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Copies a text in the local 8-bit encoding, cut to veloCortivoTextSize with the closing zero at
/// the border of a character. Empty for null.
[[nodiscard]] QString pluginText(const char* text);

/// As one line of at most 100 characters, for menus and lists.
[[nodiscard]] QString pluginLine(const QString& text);
