// The program, its folders, and what the settings say of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <QCoreApplication>

using namespace plugin_functions;

namespace {

void copySetting(QString RunSettings::*field, char* out) {
    const RunSession* running = session();
    copyText(running ? running->settings.*field : QString(), out);
}

void copyFolder(QString RunSettings::*field, char* out) {
    const RunSession* running = session();
    copyText(running ? paths::withTrailingSlash(running->settings.*field) : QString(), out);
}

} // namespace

void tGetVersionOfVCO(int* major, int* minor, int* sub) {
    give(major, 3);
    give(minor, 2);
    give(sub, 5);
}

void tGetVCOPath(char* out) {
    copyText(paths::withTrailingSlash(QCoreApplication::applicationDirPath()), out);
}

void tGetPluginsPath(char* out) {
    copyText(host() ? host()->pluginFolder() : QString(), out);
}

void tGetProjectName(char* out) {
    copySetting(&RunSettings::ProjectName, out);
}

void tGetWatchFolder(char* out) {
    copyFolder(&RunSettings::WatchFolder, out);
}

void tGetTargetFolder(char* out) {
    copyFolder(&RunSettings::TargetFolder, out);
}

void tGetFeedbackFolder(char* out) {
    copyFolder(&RunSettings::FeedbackTargetFolder, out);
}
