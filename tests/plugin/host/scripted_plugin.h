// What a test and the library of hostile_plugin.cpp share.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

/// What the plug-in "Scripted" does, and what has been asked of it.
struct PluginScript {
    std::map<std::string, std::function<bool()>> on; ///< by operation; none gives true
    std::vector<std::string> calls;
    int alive = 0; ///< objects

    bool call(const std::string& operation) {
        calls.push_back(operation);
        const auto found = on.find(operation);
        return found == on.end() || found->second();
    }
};
