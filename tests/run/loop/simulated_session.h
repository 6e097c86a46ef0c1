// A simulated scanner's session in a folder of its own, and the real program loop on it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/session_fixture.h"
#include "scanner_simulator/simulated_scan.h"

/// Square slices of `size` x `size` voxels.
[[nodiscard]] inline SimulationOptions smallScan(int size, int nrOfSlices, int nrOfVolumes) {
    SimulationOptions options;
    options.sizeX = options.sizeY = size;
    options.nrOfSlices = nrOfSlices;
    options.nrOfVolumes = nrOfVolumes;
    return options;
}

struct SimulatedSession {
    /// Settings and protocol are written, images are not.
    explicit SimulatedSession(const SimulationOptions& options)
        : scan(inFolder(options, folder.path())) {
        EXPECT_TRUE(scan.writeSettings() && scan.writeProtocol());
        EXPECT_TRUE(QDir().mkpath(watchFolder()));
        session.settings.settingsFilePath = folder.filePath("Simulation-1.vco");
        session.settings.settingsFileDir = folder.path() + "/";
        messages.acceptAnything();
    }
    [[nodiscard]] QString watchFolder() const { return scan.watchFolder(); }
    void writeAll() const { writeVolumes(0, scan.options().nrOfVolumes); }
    /// From the first one up to the last one, which is left out.
    void writeVolumes(int first, int last) const {
        for (int volume = first; volume < last; ++volume)
            for (const ScannerFile& file : scan.files(volume))
                write(file);
    }
    void write(const ScannerFile& file) const {
        const QString target = watchFolder() + file.name;
        ASSERT_TRUE(!file.name.contains('/') || QDir().mkpath(QFileInfo(target).path()));
        writeFile(target, file.bytes, file.append ? QIODevice::Append : QIODevice::WriteOnly);
    }
    /// The messages of one run, in order.
    QStringList run() {
        const qsizetype before = messages.shown().size();
        session.setRunButton(RunButtonState::Ready);
        session.runButtonPressed();
        EXPECT_TRUE(session.phase.isIdle());
        return messages.shown().mid(before);
    }
    [[nodiscard]] int savedVolumes() const {
        const SimulationOptions& options = scan.options();
        std::vector<std::vector<uint16_t>> measured;
        for (int volume = options.nrOfVolumesToSkip; volume < options.nrOfVolumes; ++volume)
            measured.push_back(scan.volume(volume));
        return ::savedVolumes(
            saved(".stc"), size_t(options.sizeX * options.sizeY), size_t(options.nrOfSlices),
            [&](size_t voxel, int volume) { return measured[size_t(volume)][voxel]; });
    }
    /// The first measured volume, skipped ones included, is that of the saved image file.
    [[nodiscard]] bool firstVolumeIsSaved() const {
        const std::vector<uint16_t> measured = scan.volume(0);
        return saved("-firstvol.img") == QByteArray(reinterpret_cast<const char*>(measured.data()),
                                                    qsizetype(2 * measured.size()));
    }
    [[nodiscard]] QByteArray saved(const QString& ending) const {
        return contentOf(folder.filePath("results/Simulation-1" + ending));
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    SimulatedPump pump;
    ProbeDisplay display;
    RunSession session{pump, display};
    SimulatedScan scan;

private:
    [[nodiscard]] static SimulationOptions inFolder(SimulationOptions options,
                                                    const QString& path) {
        options.folder = path;
        return options;
    }
};
