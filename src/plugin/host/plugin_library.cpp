// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_library.h"

PluginLibrary::~PluginLibrary() = default;
