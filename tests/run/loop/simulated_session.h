// A simulated scanner's session in a folder of its own, and the real program loop on it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/session_fixture.h"
#include "scanner_simulator/simulated_scan.h"

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
    void writeAll() const {
        for (int volume = 0; volume < scan.options().nrOfVolumes; ++volume)
            for (const ScannerFile& file : scan.files(volume))
                write(file);
    }
    void write(const ScannerFile& file) const {
        QFile target(watchFolder() + file.name);
        ASSERT_TRUE(!file.name.contains('/') || QDir().mkpath(QFileInfo(target).path()));
        ASSERT_TRUE(target.open(file.append ? QIODevice::Append : QIODevice::WriteOnly));
        target.write(file.bytes);
    }
    /// The messages of one run, in order.
    QStringList run() {
        const qsizetype before = messages.shown().size();
        session.runButtonState = RunButtonState::Ready;
        session.runButtonPressed();
        EXPECT_FALSE(session.state.runActive);
        return messages.shown().mid(before);
    }
    /// Number of saved volumes, after each sample was compared with what was measured; -1 when one
    /// differs.
    [[nodiscard]] int savedVolumes() const {
        const SimulationOptions& options = scan.options();
        const qsizetype sliceSamples = qsizetype(options.sizeX) * options.sizeY;
        const qsizetype volumeSamples = sliceSamples * options.nrOfSlices;
        QFile file(folder.filePath("results/Simulation-1.stc"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray data = file.readAll();
        const qsizetype volumes = data.size() / (2 * volumeSamples);
        for (qsizetype volume = 0; volume < volumes; ++volume) {
            const std::vector<uint16_t> measured =
                scan.volume(int(volume) + options.nrOfVolumesToSkip);
            for (qsizetype i = 0; i < volumeSamples; ++i) {
                const qsizetype at = (i / sliceSamples * volumes + volume) * sliceSamples;
                const char* bytes = data.constData() + 2 * (at + i % sliceSamples);
                if ((uint8_t(bytes[0]) | uint8_t(bytes[1]) << 8) != measured[size_t(i)])
                    return -1;
            }
        }
        return int(volumes);
    }

    /// The first measured volume, skipped ones included, is that of the saved image file.
    [[nodiscard]] bool firstVolumeIsSaved() const {
        QFile file(folder.filePath("results/Simulation-1-firstvol.img"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const std::vector<uint16_t> measured = scan.volume(0);
        return file.readAll() == QByteArray(reinterpret_cast<const char*>(measured.data()),
                                            qsizetype(2 * measured.size()));
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
