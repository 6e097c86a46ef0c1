// The way in for the C functions of the plug-in interface, which are given no object to work on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class RunSession;

/// What these functions reach of the running program. The main window implements it.
class ProgramAccess {
public:
    virtual ~ProgramAccess() = default;
    [[nodiscard]] virtual RunSession& session() = 0;
};

/// Null before the window is made and after it is gone. For the plug-in functions only: all other
/// code is handed what it works on.
[[nodiscard]] ProgramAccess* programAccess();
void setProgramAccess(ProgramAccess* program);
