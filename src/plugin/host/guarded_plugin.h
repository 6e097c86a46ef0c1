// A plug-in object whose calls can do as little harm as one process allows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "plugin/host/plugin_library.h"

#include <QString>
#include <functional>
#include <memory>

/// Owns the object and its library. Exceptions are caught and become fault(); each call is timed;
/// while one waits in a dialog no other is made.
class GuardedPlugin {
public:
    GuardedPlugin(EventPump& pump, std::unique_ptr<PluginLibrary> library,
                  VeloCortivoPlugin* plugin);
    /// Deletes the object, which must not be in a call, and closes its library.
    ~GuardedPlugin();
    GuardedPlugin(const GuardedPlugin&) = delete;
    GuardedPlugin& operator=(const GuardedPlugin&) = delete;

    /// Their result; false too when they throw.
    [[nodiscard]] bool initPlugin();
    [[nodiscard]] bool executeAtLaunch();
    void executeBeforeVolume();
    void executeAfterVolume();
    void executeAfterRun();

    [[nodiscard]] bool isInCall() const { return inCall_; }
    /// What was thrown and in which call: "executeAfterVolume: <what>"; empty for nothing.
    [[nodiscard]] const QString& fault() const { return fault_; }
    /// Milliseconds of the latest call, with its waiting for the operator.
    [[nodiscard]] qint64 lastCall() const { return lastCall_; }

private:
    bool call(const char* operation, const std::function<bool()>& work);

    EventPump& pump_;
    std::unique_ptr<PluginLibrary> library_;
    std::unique_ptr<VeloCortivoPlugin> plugin_;
    QString fault_;
    qint64 lastCall_ = 0;
    bool inCall_ = false;
};
