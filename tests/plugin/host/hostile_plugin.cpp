// Libraries that a plug-in folder may hold; each is this file with another FIXTURE_ defined.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/sdk/velo_cortivo_plugin.h"
#include "scripted_plugin.h"

#include <stdexcept>

#if defined(FIXTURE_SCRIPTED)

VELO_CORTIVO_EXPORT PluginScript* pluginScript() {
    static PluginScript script;
    return &script;
}

namespace {

class Scripted : public VeloCortivoPlugin {
public:
    Scripted() { ++pluginScript()->alive; }
    ~Scripted() override {
        pluginScript()->call("destructor");
        --pluginScript()->alive;
    }
    bool initPlugin() override { return pluginScript()->call("initPlugin"); }
    bool executeAtLaunch() override { return pluginScript()->call("executeAtLaunch"); }
    void executeBeforeVolume() override { pluginScript()->call("executeBeforeVolume"); }
    void executeAfterVolume() override { pluginScript()->call("executeAfterVolume"); }
    void executeAfterRun() override { pluginScript()->call("executeAfterRun"); }
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Scripted";
}
VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Follows <a href=\"script.html\">its script</a>";
}
VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "A & B";
}
VELO_CORTIVO_EXPORT const char* getHelpFile() {
    return "scripted.html";
}
VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new Scripted;
}

#elif defined(FIXTURE_NO_NAME)

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new VeloCortivoPlugin;
}

#elif defined(FIXTURE_BLANK_NAME)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return " \n";
}

#elif defined(FIXTURE_NULL_NAME)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return nullptr;
}

#elif defined(FIXTURE_THROWING_NAME)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    throw 7;
}

#elif defined(FIXTURE_LONG_NAME)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    static const std::string name = "A\tlong\nname " + std::string(5000, 'x');
    return name.c_str();
}

#elif defined(FIXTURE_DOTTED_NAME)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Dotted...";
}

#elif defined(FIXTURE_DATA_FOR_FUNCTIONS)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Data";
}
extern "C" {
__attribute__((visibility("default"))) int getAuthor = 12;
__attribute__((visibility("default"))) int createPlugin = 13;
}

#elif defined(FIXTURE_NULL_OBJECT)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Null";
}
VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return nullptr;
}

#elif defined(FIXTURE_STRAY_OBJECT)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Stray";
}
VELO_CORTIVO_EXPORT void* createPlugin() {
    return reinterpret_cast<void*>(0x1000);
}

#elif defined(FIXTURE_THROWING_CREATE)

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Throwing";
}
VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    throw std::runtime_error("no device");
}

#elif defined(FIXTURE_MISSING_SLOTS)

class __attribute__((visibility("default"))) ShortPlugin {
public:
    virtual ~ShortPlugin();
    virtual bool initPlugin();
    virtual bool executeAtLaunch();
};
ShortPlugin::~ShortPlugin() = default;
bool ShortPlugin::initPlugin() {
    return true;
}
bool ShortPlugin::executeAtLaunch() {
    return true;
}

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Short";
}
VELO_CORTIVO_EXPORT void* createPlugin() {
    static ShortPlugin plugin; // one that is refused is not deleted
    return &plugin;
}

#elif defined(FIXTURE_UNKNOWN_FUNCTION)

extern "C" void tOfALaterVersion(void);

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Later";
}
VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    tOfALaterVersion();
    return nullptr;
}

#endif
