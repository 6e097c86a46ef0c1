// A plug-in object whose calls can do as little harm as one process allows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"

#include <QString>
#include <memory>

class VeloCortivoPlugin;

/// Owns the object, whose library stays open as long. Exceptions are caught and become fault();
/// each call is timed; while one is on the stack no other is made.
class GuardedPlugin {
public:
    GuardedPlugin(EventPump& pump, std::unique_ptr<VeloCortivoPlugin> plugin);
    /// Deletes the object, which must not be in a call.
    ~GuardedPlugin();
    GuardedPlugin(const GuardedPlugin&) = delete;
    GuardedPlugin& operator=(const GuardedPlugin&) = delete;

    /// Their result; false too when they throw, and when they are not called.
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
    bool call(const char* name, bool (*operation)(VeloCortivoPlugin& plugin));

    EventPump& pump_;
    std::unique_ptr<VeloCortivoPlugin> plugin_;
    QString fault_;
    qint64 lastCall_ = 0;
    bool inCall_ = false;
};
