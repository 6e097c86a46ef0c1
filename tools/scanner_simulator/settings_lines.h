// The entries of a settings file, line by line.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/file_writing.h"

/// Lines "key value" with the key padded to 34 columns.
class SettingsLines {
public:
    void plain(const char* key, const QByteArray& value) {
        text_ += formatted("%-34s", key) + value + '\n';
    }
    void number(const char* key, double value) { plain(key, formatted("%.7g", value)); }
    void quoted(const char* key, const QString& value) { plain(key, '"' + value.toUtf8() + '"'); }
    void blank() { text_ += '\n'; }
    [[nodiscard]] const QByteArray& text() const { return text_; }

private:
    QByteArray text_;
};
