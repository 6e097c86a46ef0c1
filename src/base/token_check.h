// Checking the keys of positional text files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

enum class CheckMode {
    Silent = 0,  ///< nothing is shown
    Fatal = 1,   ///< critical message, then the end of the program with status 1
    Warning = 2, ///< the timer is stopped, then a warning
};

/// Checks tokens of one file.
class TokenChecker {
public:
    /// `stopTimer` is called before a warning, so that polling the settings file does not show the
    /// box again and again.
    TokenChecker(QString filePath, std::function<void()> stopTimer)
        : filePath_(std::move(filePath)), stopTimer_(std::move(stopTimer)) {}

    /// True when both agree (tokensAgree). A difference is treated as the mode says.
    [[nodiscard]] bool checkToken(const QString& found, const QString& expected,
                                  CheckMode mode) const;

private:
    QString filePath_;
    std::function<void()> stopTimer_;
};
