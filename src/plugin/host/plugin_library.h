// An open library of a plug-in.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLibrary>
#include <QString>

class VeloCortivoPlugin;

/// Why the file can't be a library for this machine: it is empty, cut short, no library, or one for
/// another processor. Empty when it looks like one. The system's loader trusts a library's sizes,
/// and a file that is shorter than these say ends the program.
[[nodiscard]] QString libraryFileFault(const QString& path);

/// Closes the library when it is destroyed, unless keepOpen() was called.
class PluginLibrary {
public:
    PluginLibrary() = default;
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// False when it can't be opened, for the reason that fault() gives; so are libraries that need
    /// a function that the program doesn't have.
    [[nodiscard]] bool open(const QString& path);
    [[nodiscard]] const QString& fault() const { return fault_; }
    /// Result of a function without arguments that gives a text; empty without such a function, and
    /// when it throws.
    [[nodiscard]] QString text(const char* function);
    /// Calls createPlugin(). Null without that function, when it throws or gives null, or when the
    /// object that it gives can't be a plug-in; fault() says which.
    [[nodiscard]] VeloCortivoPlugin* create();

private:
    QLibrary library_;
    QString fault_;
};

/// Why the object can't be a plug-in: its table of functions lacks some, or points to no code.
/// Empty when nothing is seen. What a class without exported symbols lacks can't be seen.
[[nodiscard]] QString pluginObjectFault(const VeloCortivoPlugin* plugin);
