// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_times.h"

namespace {

QString callText(const char* name, const std::optional<qint64>& time) {
    return time ? QStringLiteral("%1: %2 ms   ").arg(QLatin1String(name)).arg(*time) : QString();
}

} // namespace

qint64 PluginTimes::ofVolume() const {
    return before || after ? before.value_or(0) + after.value_or(0) : -1;
}

void PluginTimes::endVolume(int volume) {
    if (ofVolume() < 0 || (longestVolume >= 0 && ofVolume() <= longest))
        return;
    longest = ofVolume();
    longestVolume = volume;
}

QString pluginTimesText(const PluginTimes& times, double TR) {
    const QString longest = QStringLiteral("Longest: %1 ms (volume %2)")
                                .arg(times.longest)
                                .arg(times.longestVolume + 1);
    return callText("Before volume", times.before) + callText("After volume", times.after) +
           longest + (isLongFor(times.ofVolume(), TR) ? "   more than half of the TR" : "");
}
