// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/scanner_run.h"

#include "base/plain_file.h"
#include "run/protocol/stimulation_protocol.h"
#include "run/settings/settings_file.h"

#include <algorithm>

namespace {

InputFile inputFile(const QString& path) {
    constexpr qint64 largest = 64 << 20; // as for reading it
    QFile file(path);
    if (!isProtocolPathSet(path) || !openPlainFile(file))
        return {};
    return {path, file.read(std::min(largest, file.size()))}; // which allocates all of it
}

} // namespace

bool ScannerRun::readSettings(RunSettings& settings, const std::function<void()>& stopTimer) {
    inputs_.settings = inputFile(settings.settingsFilePath);
    if (!readSettingsFile(settings, SettingsUse::Run, stopTimer))
        return false;
    inputs_.protocol = inputFile(settings.StimulationProtocol);
    inputs_.contrasts = inputFile(settings.ContrastFile);
    return true;
}
