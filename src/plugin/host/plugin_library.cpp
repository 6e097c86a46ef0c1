// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_library.h"

#include "plugin/host/library_file.h"
#include "plugin/host/plugin_object.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <exception>

namespace {

QString copied(const char* text) {
    return QString::fromLocal8Bit(text, qsizetype(qstrnlen(text, veloCortivoTextSize - 1)));
}

/// Its function, unless something else bears the name.
template<typename Function> Function resolved(QLibrary& library, const char* name) {
    const QFunctionPointer found = library.resolve(name);
    return isLoadedCode(reinterpret_cast<const void*>(found)) ? reinterpret_cast<Function>(found)
                                                              : nullptr;
}

} // namespace

std::optional<QString> thrownBy(const std::function<void()>& work) {
    try {
        work();
        return std::nullopt;
    } catch (const std::exception& exception) {
        return copied(exception.what());
    } catch (...) {
        return QStringLiteral("an exception of unknown type");
    }
}

PluginLibrary::~PluginLibrary() {
    if (library_.isLoaded())
        library_.unload();
}

bool PluginLibrary::open(const QString& path) {
    fault_ = libraryFileFault(path);
    if (!fault_.isEmpty())
        return false;
    library_.setFileName(path);
    library_.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (library_.load())
        return true;
    // The loader puts the path, once or twice, in front of what it has to say.
    fault_ = library_.errorString().section(path + ": ", -1);
    return false;
}

QString PluginLibrary::text(const char* function) {
    const auto call = resolved<const char* (*)()>(library_, function);
    QString text;
    if (!call || thrownBy([&] { text = copied(call()); }))
        return {};
    return text;
}

VeloCortivoPlugin* PluginLibrary::create() {
    fault_.clear();
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
