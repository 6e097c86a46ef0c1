// What the functions for plug-ins see of the program, and the rules that all of them share.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host/plugin_host.h"
#include "run/session/run_session.h"

#include <QString>
#include <concepts>
#include <optional>

namespace plugin_functions {

/// Null without a program.
[[nodiscard]] RunSession* session();
[[nodiscard]] PluginHost* host();
/// The run in memory; null without one.
[[nodiscard]] QtCortivoDoc* document();
/// The same while the volume loop runs, else null.
[[nodiscard]] QtCortivoDoc* activeDocument();
/// Index of the current volume: the last one of the run after it has been reloaded; -1 before the
/// first one. Below the number of volumes in memory.
[[nodiscard]] int currentVolume();

/// 0 <= index < count.
[[nodiscard]] bool isWithin(int index, std::integral auto count) {
    return index >= 0 && std::cmp_less(index, count);
}
/// Where the voxel's value lies in an array of this size; nothing outside it.
[[nodiscard]] std::optional<size_t> voxelOffset(const VolumeSize& size, int x, int y, int z);

/// Copies the text, cut to veloCortivoTextSize with the closing zero at the border of a character.
/// Does nothing for null.
void copyText(const QString& text, char* out);

/// Writes what a function gives through a pointer; does nothing for null.
template<typename Value> void give(Value* out, Value value) {
    if (out)
        *out = value;
}

} // namespace plugin_functions
