// Global access to the program for the C functions of the plug-in interface, which get no object.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class PluginHost;
class RunSession;

/// The part of the program that these functions use. The main window implements it.
class ProgramAccess {
public:
    virtual ~ProgramAccess() = default;
    [[nodiscard]] virtual RunSession& session() = 0;
    [[nodiscard]] virtual PluginHost& plugins() = 0;
};

/// Null before the window is made and after it is gone. For the plug-in functions only: all other
/// code is passed the objects it needs.
[[nodiscard]] ProgramAccess* programAccess();
void setProgramAccess(ProgramAccess* program);
