// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/guarded_plugin.h"

#include "plugin/sdk/velo_cortivo_plugin.h"

GuardedPlugin::~GuardedPlugin() = default;
