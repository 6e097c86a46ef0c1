// What can be seen of an object that a plug-in library gives.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class VeloCortivoPlugin;

/// Whether the address lies in code of the program or of a library that is open.
[[nodiscard]] bool isLoadedCode(const void* address);

/// Why the object can't be a plug-in: it can't be read, or its table of functions lacks some, or
/// points to no code.
/// Empty when nothing is seen. What a class without exported symbols lacks can't always be seen.
[[nodiscard]] QString pluginObjectFault(const VeloCortivoPlugin* plugin);
