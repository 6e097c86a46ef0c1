// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_host.h"

#include "base/messages.h"
#include "base/paths.h"
#include "plugin/host/plugin_dialog.h"
#include "plugin/host/plugin_library.h"
#include "plugin/sdk/velo_cortivo_plugin.h"
#include "run/loop/run_display.h"
#include "run/loop/status_text.h"
#include "run/session/run_session.h"

namespace {

void tellNotLaunched(const QString& path, const QString& reason) {
    const QString text = QStringLiteral("Could not launch plugin \"%1\".").arg(path);
    showWarning(reason.isEmpty() ? text : text + "\n\n" + reason);
}

} // namespace

PluginHost::PluginHost(const Parts& parts) : parts_(parts) {
    parts_.session.listeners.add(*this, ListenerPlace::PlugIn);
}

PluginHost::~PluginHost() {
    delete dialog_.data();
}

const PluginCatalogue& PluginHost::discover() {
    catalogue_ = {};
    if (isBusy())
        return catalogue_;
    if (parts_.session.phase.isIdle())
        libraries_.clear();
    catalogue_ = readPlugins(parts_.pluginFolder);
    return catalogue_;
}

std::vector<PluginMenuRow> PluginHost::menuRows() {
    if (isBusy())
        return {};
    return pluginMenuRows(discover(), parts_.pluginFolder);
}

void PluginHost::launch(int index) {
    if (isBusy() || index < 0 || index >= int(catalogue_.plugins.size()))
        return;
    // The menu may open, and the catalogue change, while the plug-in waits in a dialog.
    launching_ = true;
    description_ = catalogue_.plugins[size_t(index)];
    if (createObject())
        start();
    launching_ = false;
}

bool PluginHost::createObject() {
    auto library = std::make_unique<PluginLibrary>();
    VeloCortivoPlugin* object = library->open(description_.path) ? library->create() : nullptr;
    const QString fault = library->fault();
    libraries_.push_back(std::move(library));
    if (!object) {
        parts_.session.pluginMaps.clear(); // createPlugin() may have registered some
        tellNotLaunched(description_.path, fault);
        return false;
    }
    plugin_ =
        std::make_unique<GuardedPlugin>(parts_.pump, std::unique_ptr<VeloCortivoPlugin>(object));
    return true;
}

void PluginHost::start() {
    if (!plugin_->initPlugin()) {
        tellFault();
        return deletePlugin();
    }
    activePath_ = description_.path;
    times_ = {};
    openWindow();
    const bool goesOn = plugin_->executeAtLaunch();
    if (goesOn || closing_ || !plugin_->fault().isEmpty())
        endCall();
    else
        endAtLaunch();
}

void PluginHost::openWindow() {
    dialog_ = new PluginDlg(description_.name, parts_.session.phase, parts_.window);
    dialog_->setHelpFile(description_.helpPath());
    QObject::connect(dialog_, &PluginDlg::closed, dialog_, [this] { windowClosed(); });
    dialog_->showBesideWindow();
}

// Not the way of a plug-in that is closed: the path stays active.
void PluginHost::endAtLaunch() {
    dialog_->disconnect();
    delete dialog_.data();
    deletePlugin();
    parts_.display.showLogText(
        pluginEndedText(parts_.session.requests.logFontSize, description_.name));
    endedAtLaunch_ = description_.name;
}

void PluginHost::close() {
    if (dialog_)
        dialog_->close();
    if (plugin_)
        windowClosed();
}

void PluginHost::windowClosed() {
    dialog_ = nullptr;
    closing_ = true;
    if (plugin_ && plugin_->isInCall())
        return;
    deletePlugin();
    activePath_.clear();
}

// No call is made any more while its destructor runs, which may wait in a dialog.
void PluginHost::deletePlugin() {
    std::unique_ptr<GuardedPlugin> leaving = std::move(plugin_);
    leaving.reset();
    closing_ = false;
    parts_.session.pluginMaps.clear();
}

std::optional<qint64> PluginHost::call(Operation operation) {
    if (!plugin_ || plugin_->isInCall())
        return std::nullopt;
    (*plugin_.*operation)();
    const qint64 time = plugin_->lastCall();
    endCall();
    return time;
}

void PluginHost::endCall() {
    if (!plugin_->fault().isEmpty()) {
        tellFault();
        close();
    } else if (closing_) {
        windowClosed();
    }
}

void PluginHost::tellFault() {
    if (plugin_->fault().isEmpty())
        return;
    const QString run = parts_.session.phase.isIdle() ? "" : " The run goes on.";
    showModelessWarning(
        QStringLiteral("WARNING: The plug-in \"%1\" failed in %2\n\nIt was closed.%3")
            .arg(description_.name, plugin_->fault(), run));
}

void PluginHost::log(const QString& text) {
    if (dialog_)
        dialog_->log(text);
}

QString PluginHost::lastUsedFolder() const {
    if (!lastUsedFolder_.isEmpty())
        return lastUsedFolder_;
    const QString& target = parts_.session.settings.TargetFolder;
    return paths::withTrailingSlash(target.isEmpty() ? parts_.dataFolder : target);
}

void PluginHost::setLastUsedFolder(const QString& folder) {
    lastUsedFolder_ = paths::withTrailingSlash(folder);
}

void PluginHost::runPrepared(QtCortivoDoc&) {
    times_ = {};
}

bool PluginHost::beforeVolume(const VolumeAtHand& hand) {
    times_.beginVolume();
    times_.before = call(&GuardedPlugin::executeBeforeVolume);
    reportTime(hand);
    return true;
}

bool PluginHost::atStep(VolumeStep step, const VolumeAtHand& hand) {
    if (step != VolumeStep::AfterModel)
        return true;
    times_.after = call(&GuardedPlugin::executeAfterVolume);
    times_.endVolume(hand.volume);
    reportTime(hand);
    showTimes(hand);
    return true;
}

// A run that could not begin has no end.
void PluginHost::loopEnded(QtCortivoDoc&) {
    if (!parts_.session.phase.runActive())
        call(&GuardedPlugin::executeAfterRun);
}

void PluginHost::reportTime(const VolumeAtHand& hand) {
    RunReport& report = parts_.session.report;
    report.times.pluginTime = times_.ofVolume();
    report.slowPlugin =
        isLongFor(times_.ofVolume(), double(hand.document.project.TR)) ? description_.name : "";
}

void PluginHost::showTimes(const VolumeAtHand& hand) {
    const auto TR = double(hand.document.project.TR);
    const qint64 time = times_.ofVolume();
    if (time < 0 || !dialog_)
        return;
    const bool isLong = isLongFor(time, TR);
    dialog_->showTimes(pluginTimesText(times_, TR), isLong);
    if (isLong && !times_.warned)
        log(QStringLiteral("The plug-in took %1 ms at volume %2, more than half of the TR.")
                .arg(time)
                .arg(hand.volume + 1));
    times_.warned = times_.warned || isLong;
}
