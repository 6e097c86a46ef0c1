// A disk in memory that is as slow as a test wants, and fails when it says.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/journal_output.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

struct ScriptedDisk {
    std::mutex mutex;
    std::condition_variable changed;
    bool open = true;             ///< while it isn't, writes wait
    bool forcesOut = true;        ///< while it doesn't, forcing out waits
    bool shutsWhenForced = false; ///< so that one piece of work is done each time it is opened
    int failingCall = -1;         ///< index of the call that fails
    std::vector<uint8_t> bytes;
    std::string calls; ///< W for each write, F for each time that data were forced out
    size_t forced = 0; ///< bytes that were forced out

    void set(const std::function<void()>& change) {
        {
            const std::lock_guard lock(mutex);
            change();
        }
        changed.notify_all();
    }
    /// Waits as long as it takes; what never comes runs into the time limit of the test program.
    void waitUntil(const std::function<bool()>& condition) {
        std::unique_lock lock(mutex);
        changed.wait(lock, condition);
    }
};

class ScriptedOutput : public JournalOutput {
public:
    explicit ScriptedOutput(std::shared_ptr<ScriptedDisk> disk) : disk_(std::move(disk)) {}

    bool write(std::span<const uint8_t> bytes) override {
        std::unique_lock lock(disk_->mutex);
        const bool good = begin('W');
        disk_->changed.wait(lock, [this] { return disk_->open; });
        // A full disk takes a part.
        const auto taken = bytes.first(good ? bytes.size() : bytes.size() / 2);
        disk_->bytes.insert(disk_->bytes.end(), taken.begin(), taken.end());
        return good;
    }
    bool forceOut() override {
        std::unique_lock lock(disk_->mutex);
        const bool good = begin('F');
        disk_->changed.wait(lock, [this] { return disk_->forcesOut; });
        disk_->forced = disk_->bytes.size();
        disk_->open = disk_->open && !disk_->shutsWhenForced;
        disk_->changed.notify_all();
        return good;
    }

private:
    bool begin(char call) {
        const bool good = disk_->failingCall < 0 || int(disk_->calls.size()) < disk_->failingCall;
        disk_->calls.push_back(call);
        disk_->changed.notify_all();
        return good;
    }
    std::shared_ptr<ScriptedDisk> disk_;
};
