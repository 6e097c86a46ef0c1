// A simulated scanner's files through the real readers and the real loop, held against the truth.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/simulated_session.h"

namespace {

// Part of the voxels under `wanted` whose map value passes 3.
double fractionAbove3(std::span<const float> map, const std::vector<uint8_t>& wanted) {
    size_t above = 0;
    size_t all = 0;
    for (size_t i = 0; i < wanted.size(); ++i) {
        all += wanted[i] != 0;
        above += wanted[i] && map[i] > 3.0f;
    }
    return all == 0 ? -1.0 : double(above) / double(all);
}

/// All files of the results, by name.
QMap<QString, QByteArray> resultsOf(const SimulatedSession& run) {
    QMap<QString, QByteArray> files;
    const QDir folder(run.folder.filePath("results"));
    for (const QString& name : folder.entryList(QDir::Files))
        files[name] = contentOf(folder.filePath(name));
    return files;
}

} // namespace

TEST(SimulatedRun, ThreadsThatShareTheWorkWriteTheSameFiles) {
    SimulationOptions options = smallScan(40, 9, 42);
    options.motion = HeadMotion::Drift;
    options.smoothingWidth = 6;
    SimulatedSession run{options};
    run.writeAll();
    QMap<QString, QByteArray> alone;
    for (const int threads : {1, 4}) {
        // More than the cores, which the settings would not give.
        ProbeListener probe(run.session.listeners, ListenerPlace::Dialogs);
        probe.onBeforeVolume = [&](int) {
            run.session.workers.setNrOfThreads(threads);
            return true;
        };
        run.run();
        const QMap<QString, QByteArray> files = resultsOf(run);
        if (alone.isEmpty())
            alone = files;
        ASSERT_GE(files.size(), 10);
        ASSERT_EQ(files.keys(), alone.keys());
        for (const QString& name : files.keys())
            EXPECT_TRUE(files[name] == alone[name]) << name.toStdString();
    }
}

TEST(SimulatedRun, ActiveRegionsAreFoundAndOthersAreNot) {
    SimulatedSession run{SimulationOptions()};
    run.writeAll();
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(run.session.functionalDocument);
    const QtCortivoDoc& document = *run.session.functionalDocument;
    const SimulatedScan& scan = run.scan;
    ASSERT_GE(document.maps.NrOfActiveContrasts, 2);
    const std::vector<uint8_t> first = scan.activeVoxels(1);
    const std::vector<uint8_t> second = scan.activeVoxels(2);
    for (int condition : {1, 2}) {
        const int map = condition - 1;
        ASSERT_EQ(document.maps.contrastOfMap[size_t(map)], map);
        const std::span<const float> values = document.maps.map(map);
        EXPECT_GE(fractionAbove3(values, scan.activeVoxels(condition)), 0.95) << condition;
        std::vector<uint8_t> others = document.mask.voxels;
        for (size_t i = 0; i < others.size(); ++i)
            others[i] = others[i] && !first[i] && !second[i];
        EXPECT_LE(std::abs(fractionAbove3(values, others)), 0.01) << condition;
    }
}

TEST(SimulatedRun, ABurstOfLateVolumesIsLaidToTheScanner) {
    SimulationOptions options = smallScan(16, 4, 10);
    options.nrOfVolumesToSkip = 0;
    options.repetitionTime = 1000;
    SimulatedSession run{options};
    const auto comesAt = [](int volume) {
        return 1000 * (volume == 4 || volume == 5 ? 6 : volume);
    };
    for (int volume = 0; volume < options.nrOfVolumes; ++volume)
        run.pump.after(comesAt(volume), [&run, volume] {
            run.writeVolumes(volume, volume + 1);
            run.pump.changeFolders();
        });
    EXPECT_EQ(run.run(), QStringList());
    const std::span<const VolumeTimes> volumes = run.session.functionalDocument->ledger.volumes();
    ASSERT_EQ(volumes.size(), 10u);
    constexpr qint64 second = 1'000'000;
    for (const VolumeTimes& volume : volumes)
        EXPECT_LE(volume.needed(), second / 10) << "settling";
    EXPECT_GT(volumes[4].of(VolumeStage::Waiting), 29 * second / 10);
    EXPECT_EQ(volumes[4].sinceLast, 3 * second);
    EXPECT_GT(volumes[4].late(), second);
    EXPECT_EQ(volumes[5].of(VolumeStage::Waiting), 0);
    EXPECT_EQ(volumes[6].of(VolumeStage::Waiting), 0);
    EXPECT_LT(volumes[6].late(), 0) << "caught up";
    EXPECT_TRUE(run.session.report.outcomeText.contains("<br><b>Volume 5 came 2000 ms late</b>"));
    EXPECT_FALSE(run.session.report.outcomeText.contains("took"));
}
