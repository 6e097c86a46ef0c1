// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/token_check.h"

#include "base/messages.h"
#include "base/program_end.h"
#include "base/text_reading.h"

bool TokenChecker::checkToken(const QString& found, const QString& expected, CheckMode mode) const {
    if (tokensAgree(found, expected))
        return true;
    const QString text =
        QStringLiteral("ERROR: Expected \"%1\" token but found \"%2\".\n\nCheck entry name and "
                       "order of entries in settings file: \"%3\" !\n")
            .arg(expected, shortened(found), filePath_);
    if (mode == CheckMode::Fatal) {
        showCritical(text);
        endProgram(1);
    } else if (mode == CheckMode::Warning) {
        if (stopTimer_)
            stopTimer_();
        showWarning(text);
    }
    return false;
}
