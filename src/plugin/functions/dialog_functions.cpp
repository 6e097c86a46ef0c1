// Dialogs and the log.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "plugin/functions/running_program.h"
#include "plugin/host/plugin_text.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

namespace {

const QString title = QStringLiteral("Velo-Cortivo Plugin");

/// Where a chooser starts that is asked to start at `path`.
QString startOf(const QString& path) {
    if (!paths::folderWithSlash(path).isEmpty())
        return path;
    return paths::join(host() ? host()->lastUsedFolder() : QString(), path);
}

using Chooser = QString(const QString& title, const QString& place, const QString& filter);

bool chooseFile(Chooser* choose, const char* caption, const char* path, const char* filter,
                char* out) {
    const QString heading = pluginText(caption);
    const QString file =
        choose(heading.isEmpty() ? title : heading, startOf(pluginText(path)), pluginText(filter));
    copyText(file, out);
    // The program may have ended while the dialog was open.
    if (!file.isEmpty() && host())
        host()->setLastUsedFolder(paths::folderWithSlash(file));
    return !file.isEmpty();
}

} // namespace

void tLogText(const char* text) {
    if (host())
        host()->log(pluginText(text));
}

void tMessageBox(const char* text) {
    showInformation(pluginText(text), title);
}

bool tYesNoMessageBox(const char* text) {
    return askQuestion(pluginText(text), title);
}

int tGetIntegerInput(const char* text, int defaultValue, int min, int max) {
    // Below the smallest integer comes the largest one, as in the machine.
    const int cancelled = int(unsigned(min) - 1u);
    return askForInteger({title, pluginText(text)}, defaultValue, {min, max}).value_or(cancelled);
}

float tGetFloatInput(const char* text, float defaultValue, float min, float max) {
    const NumberBounds bounds{double(min), double(max), 3};
    const auto number = askForNumber({title, pluginText(text)}, double(defaultValue), bounds);
    return number ? float(*number) : min - 1.0f;
}

bool tGetTextInput(const char* text, const char* defaultText, char* out) {
    const auto answer = askForText({title, pluginText(text)}, pluginText(defaultText));
    copyText(answer.value_or(QString()), out);
    return answer.has_value();
}

bool tGetOpenFileName(const char* caption, const char* path, const char* filter, char* out) {
    return chooseFile(waitForFileToOpen, caption, path, filter, out);
}

bool tGetSaveFileName(const char* caption, const char* path, const char* filter, char* out) {
    return chooseFile(waitForFileToSave, caption, path, filter, out);
}
