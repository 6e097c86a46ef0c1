// An open library of a plug-in.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>

class VeloCortivoPlugin;

/// Does the work, which calls code of a plug-in; gives what was thrown in it.
[[nodiscard]] std::optional<QString> thrownBy(const std::function<void()>& work);

/// Closes the library when it is destroyed. Others that have it open keep it open.
class PluginLibrary {
public:
    PluginLibrary() = default;
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// False when it can't be opened, for the reason that fault() gives; so are libraries that need
    /// a function that the program doesn't have.
    [[nodiscard]] bool open(const QString& path);
    /// Why the latest step failed.
    [[nodiscard]] const QString& fault() const { return fault_; }
    /// Result of a function without arguments that gives a text, cut to the size that the interface
    /// states; empty without such a function, and when it throws.
    [[nodiscard]] QString text(const char* function);
    /// Of an open library, once: calls createPlugin(). Null without that function, and then fault()
    /// is empty; null too when it throws or gives null, or when the object that it gives can't be a
    /// plug-in.
    [[nodiscard]] VeloCortivoPlugin* create();

private:
    void* library_ = nullptr; ///< of the system's loader, which counts its users; QLibrary does not
    QString fault_;
};
