// The smallest plug-in: asks two things when it is launched, and writes a line at each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <velo_cortivo_plugin.h>

#include <string>

namespace {

class Greeting : public VeloCortivoPlugin {
public:
    // Questions belong here: when the operator cancels, the plug-in ends without a trace.
    bool initPlugin() override {
        char name[veloCortivoTextSize];
        if (!tGetTextInput("Who is at the scanner?", "Operator", name))
            return false;
        operator_ = name;
        everyVolume_ = tYesNoMessageBox("Write a line at each volume?");
        return true;
    }

    bool executeAtLaunch() override {
        int major = 0, minor = 0, sub = 0;
        tGetVersionOfVCO(&major, &minor, &sub);
        tLogText(("Hello, " + operator_ + "! This is interface " + std::to_string(major) + "." +
                  std::to_string(minor) + "." + std::to_string(sub) + ".")
                     .c_str());
        return true;
    }

    void executeAfterVolume() override {
        if (!everyVolume_)
            return;
        tLogText(("Volume " + std::to_string(tGetCurrentTimePoint()) + " of " +
                  std::to_string(tGetExpectedNrOfTimePoints()) + ", condition " +
                  std::to_string(tGetCurrentProtocolCondition()))
                     .c_str());
    }

    void executeAfterRun() override {
        tLogText(("Thank you, " + operator_ + ". " + std::to_string(tGetCurrentTimePoint()) +
                  " volumes were measured.")
                     .c_str());
    }

private:
    std::string operator_;
    bool everyVolume_ = false;
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Greeting";
}

VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Greets the operator and counts the volumes.";
}

VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "Velo-Cortivo developers";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new Greeting;
}
