// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"
#include "command_line.h"
#include "replay_folder.h"
#include "simulated_scan.h"
#include "watch_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <thread>

namespace {

enum ExitStatus { Success = 0, Failure = 1, BadCommand = 2, InterruptedByUser = 130 };

volatile std::sig_atomic_t interrupted = 0;

void onInterrupt(int) {
    interrupted = 1;
}

class SystemClock : public DeliveryClock {
public:
    [[nodiscard]] int64_t milliseconds() const override {
        using namespace std::chrono;
        return duration_cast<std::chrono::milliseconds>(steady_clock::now() - origin_).count();
    }
    /// Sleeps in short intervals, so that an interrupt from the keyboard ends a long wait.
    [[nodiscard]] bool waitUntil(int64_t milliseconds) override {
        constexpr int64_t longestSleep = 50;
        while (interrupted == 0 && this->milliseconds() < milliseconds)
            std::this_thread::sleep_until(
                origin_ + std::chrono::milliseconds(
                              std::min(milliseconds, this->milliseconds() + longestSleep)));
        return interrupted == 0;
    }

private:
    std::chrono::steady_clock::time_point origin_ = std::chrono::steady_clock::now();
};

void say(const QString& text) {
    std::fprintf(stdout, "%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

ExitStatus refuse(ExitStatus status, const QString& text) {
    std::fprintf(stderr, "scanner-simulator: %s\n", text.toUtf8().constData());
    return status;
}

ExitStatus refuseFolder(const SimulationOptions& options) {
    return refuse(Failure,
                  QString("The session files can't be written into \"%1\".").arg(options.folder));
}

/// Files of an earlier measurement with the same names would be mistaken for these.
bool removeLeftovers(const QStringList& names, const QString& folder) {
    for (const QString& name : names) {
        const QString path = paths::join(folder, name);
        if (QFile::exists(path) && !QFile::remove(path))
            return false;
    }
    return true;
}

ExitStatus deliverRun(const SimulatorCommand& command, const VolumeSource& source,
                      const QStringList& names, const QString& folder) {
    if (!removeLeftovers(names, folder))
        return refuse(Failure, QString("Old files in \"%1\" can't be removed.").arg(folder));
    SystemClock clock;
    const DeliveryOutcome outcome = deliver(command.delivery, source, folder, clock, say);
    switch (outcome.result) {
    case DeliveryResult::Done:
        return Success;
    case DeliveryResult::Interrupted:
        return refuse(InterruptedByUser, "Interrupted.");
    case DeliveryResult::Failed:
        break;
    }
    return refuse(Failure, outcome.problem);
}

ExitStatus simulateRun(const SimulatorCommand& command, const SimulationOptions& options) {
    const SimulatedScan scan(options);
    if (!scan.writeSettings() || !scan.writeProtocolHeader() || !scan.writeTruth())
        return refuseFolder(options);
    if (command.settingsOnly)
        return Success;
    QStringList names;
    for (int volume = 0; volume < options.nrOfVolumes; ++volume)
        names << scan.format().fileNames(volume);
    // Their names depend on the slice order, and each run has its own series folder.
    if (options.type == ScannerType::GeHdxtDicom)
        names << QDir(scan.watchFolder()).entryList({"i*.MRDC.*"}, QDir::Files);
    const VolumeSource source{options.nrOfVolumes,
                              scan.format().writesSlices(),
                              scan.format().writesOneFile(),
                              options.repetitionTime,
                              [&](int volume) { return std::optional(scan.files(volume)); },
                              scan.growingProtocol()};
    return deliverRun(command, source, names, scan.watchFolder());
}

ExitStatus replay(const SimulatorCommand& command) {
    SimulationOptions options = command.simulation;
    const int nrOfFilesPerVolume = fileNaming(options).nrOfFilesPerVolume;
    const ReplayFolder folder(command.replayFolder, nrOfFilesPerVolume);
    if (!command.volumesGiven)
        options.nrOfVolumes = folder.nrOfVolumes();
    if (folder.nrOfVolumes() < 1 || folder.nrOfVolumes() < options.nrOfVolumes)
        return refuse(BadCommand, QString("\"%1\" holds %2 volumes, %3 files each.")
                                      .arg(command.replayFolder)
                                      .arg(folder.nrOfVolumes())
                                      .arg(nrOfFilesPerVolume));
    if (const QString problem = problemOf(options); !problem.isEmpty())
        return refuse(BadCommand, problem);
    if (QDir(command.replayFolder) == QDir(watchFolder(options)))
        return refuse(BadCommand, "The replayed folder is the watch folder itself.");
    if (!folder.writeSession(options))
        return refuseFolder(options);
    if (command.settingsOnly)
        return Success;
    const VolumeSource source{options.nrOfVolumes, nrOfFilesPerVolume > 1, false,
                              options.repetitionTime,
                              [&](int volume) { return folder.files(volume); }};
    return deliverRun(command, source, folder.names(), watchFolder(options));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const SimulatorCommand command = parseCommandLine(QCoreApplication::arguments());
    if (!command.problem.isEmpty())
        return refuse(BadCommand, command.problem + " See --help.");
    if (!command.helpText.isEmpty()) {
        say(command.helpText);
        return Success;
    }
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
    if (!command.replayFolder.isEmpty())
        return replay(command);
    for (int run = 0; run < command.nrOfRuns; ++run) {
        SimulationOptions options = command.simulation;
        options.run += run;
        if (const ExitStatus status = simulateRun(command, options); status != Success)
            return status;
    }
    return Success;
}
