// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_text.h"

#include "plugin/sdk/velo_cortivo_plugin.h"

#include <QStringDecoder>

QString pluginText(const char* text) {
    const auto size = qsizetype(qstrnlen(text, veloCortivoTextSize - 1));
    // Waits for the rest of a character that is cut, and so leaves it out.
    QStringDecoder decoder(QStringDecoder::System);
    return decoder(QByteArrayView(text, size));
}

QString pluginLine(const QString& text) {
    constexpr qsizetype longest = 100;
    return text.simplified().left(longest);
}
