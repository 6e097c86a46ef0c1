// The libraries of hostile_plugin.cpp.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host/scripted_plugin.h"
#include "support/files.h"

#include <QDir>
#include <dlfcn.h>

inline QString fixture(const QString& name) {
    return QStringLiteral(VELO_PLUGIN_FIXTURES) + name + ".so";
}

/// Puts a library into a folder, which is made; its path there.
inline QString addPlugin(const QString& folder, const QString& name) {
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(name + ".so");
    writeFile(path, contentOf(fixture(name)));
    return path;
}

/// The script of a library "scripted", which stays open.
inline PluginScript& scriptOf(const QString& path) {
    void* library = ::dlopen(QFile::encodeName(path).constData(), RTLD_NOW);
    void* script = library ? ::dlsym(library, "pluginScript") : nullptr;
    EXPECT_NE(script, nullptr) << path.toStdString();
    return *reinterpret_cast<PluginScript* (*)()>(script)();
}
