// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_library.h"

#include "plugin/host/library_file.h"
#include "plugin/host/plugin_object.h"
#include "plugin/host/plugin_text.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <QFile>
#include <dlfcn.h>
#include <exception>

namespace {

/// Its function, unless something else bears the name.
template<typename Function> Function resolved(void* library, const char* name) {
    void* found = library ? ::dlsym(library, name) : nullptr;
    return isLoadedCode(found) ? reinterpret_cast<Function>(found) : nullptr;
}

} // namespace

std::optional<QString> thrownBy(const std::function<void()>& work) {
    try {
        work();
        return std::nullopt;
    } catch (const std::exception& exception) {
        return pluginText(exception.what());
    } catch (...) {
        return QStringLiteral("an exception of unknown type");
    }
}

PluginLibrary::~PluginLibrary() {
    if (library_)
        ::dlclose(library_);
}

bool PluginLibrary::open(const QString& path) {
    fault_ = libraryFileFault(path);
    if (!fault_.isEmpty())
        return false;
    library_ = ::dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library_)
        fault_ = QString::fromLocal8Bit(::dlerror()).remove(path + ": ");
    return library_ != nullptr;
}

QString PluginLibrary::text(const char* function) {
    const auto call = resolved<const char* (*)()>(library_, function);
    QString text;
    if (!call || thrownBy([&] { text = pluginText(call()); }))
        return {};
    return text;
}

VeloCortivoPlugin* PluginLibrary::create() {
    const auto call = resolved<VeloCortivoPlugin* (*)()>(library_, "createPlugin");
    if (!call)
        return nullptr;
    VeloCortivoPlugin* plugin = nullptr;
    const std::optional<QString> thrown = thrownBy([&] { plugin = call(); });
    if (thrown)
        fault_ = "createPlugin: " + *thrown;
    else if (!plugin)
        fault_ = QStringLiteral("createPlugin() gave no object.");
    else
        fault_ = pluginObjectFault(plugin);
    // One that is refused is left alone: its destructor can't be trusted either.
    return fault_.isEmpty() ? plugin : nullptr;
}
