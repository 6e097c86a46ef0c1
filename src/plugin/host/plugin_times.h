// What a plug-in takes of the time of a volume, in milliseconds.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

/// Of the current run. A call that was not made has no time.
struct PluginTimes {
    std::optional<qint64> before; ///< of the current volume
    std::optional<qint64> after;
    qint64 longest = 0; ///< of both calls of one volume
    int longestVolume = -1;
    bool warned = false; ///< that a volume took long

    void beginVolume() { before = after = std::nullopt; }
    /// Both calls of the current volume; -1 when none was made.
    [[nodiscard]] qint64 ofVolume() const;
    /// The volume is done.
    void endVolume(int volume);
};

/// Whether this time endangers the run: volumes come once in each TR, and the plug-in is not all
/// that is done with them.
[[nodiscard]] inline bool isLongFor(qint64 milliseconds, double TR) {
    return 2.0 * double(milliseconds) > TR;
}

/// The line of the plug-in's window.
[[nodiscard]] QString pluginTimesText(const PluginTimes& times, double TR);
