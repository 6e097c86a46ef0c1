// A session and a host, as plug-ins find them once the program has begun.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host/plugin_host.h"
#include "plugin/host/program_access.h"
#include "run/loop/session_fixture.h"

#include <QWidget>

class PluginProgram : public SessionFixture, public ProgramAccess {
protected:
    /// An empty folder stands for one of the test.
    explicit PluginProgram(const QString& pluginFolder = {})
        : host({SessionFixture::session, pump, display,
                pluginFolder.isEmpty() ? path("Plugins_64/") : pluginFolder, path("data/"),
                window}) {}
    ~PluginProgram() override { setProgramAccess(nullptr); }
    void beginProgram() { setProgramAccess(this); }
    RunSession& session() override { return SessionFixture::session; }
    PluginHost& plugins() override { return host; }

    QWidget window;
    PluginHost host;
};
