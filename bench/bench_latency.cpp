// From the scanner's closing of the last file of a volume to its feedback on both screens.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback_window.h"

#include "run/window/velo_cortivo_application.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>

namespace {

struct Way {
    const char* name;
    ScannerType type;
    WayOfWriting writing;
    ScanPace pace;
    int settling; ///< milliseconds, of this type of data
};

constexpr std::array ways{
    Way{"mosaic, renamed when whole",
        ScannerType::SiemensMosaic,
        WayOfWriting::Renamed,
        {.shortest = 150, .longest = 250},
        30},
    Way{"mosaic, created and filled",
        ScannerType::SiemensMosaic,
        WayOfWriting::InPieces,
        {.shortest = 150, .longest = 250, .betweenPieces = 15},
        30},
    Way{"25 files of one slice each",
        ScannerType::Dicom,
        WayOfWriting::InPieces,
        {.shortest = 350, .longest = 450, .betweenPieces = 1},
        10},
    Way{"one file that grows",
        ScannerType::Bruker2dseq,
        WayOfWriting::InPieces,
        {.shortest = 150, .longest = 250, .betweenPieces = 15},
        0}, // which is over when its first slice has settled
};

/// Upper ends of the classes of the histogram, in milliseconds; the last one has none.
constexpr std::array<double, 8> ends{1, 2, 5, 10, 15, 20, 50, 100};

void print(const char* name, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("  %-22s", name);
    std::array<int, ends.size() + 1> counts{};
    for (const double time : times)
        ++counts[size_t(std::ranges::upper_bound(ends, time) - ends.begin())];
    for (const int count : counts)
        std::printf(" %6d", count);
    std::printf(" %8.1f %8.1f %8.1f\n", times[times.size() / 2], times[times.size() * 99 / 100],
                times.back());
}

void measure(const Way& way, int volumes) {
    QTemporaryDir folder;
    SimulationOptions options = scanOptions(folder.path(), 64, 25, volumes + firstLiveVolume + 2);
    options.type = way.type;
    const SimulatedScan scan(options);
    if (!prepareScan(scan)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    FeedbackWindow window(folder.path());
    std::vector<double> taken;
    std::vector<double> shown;
    {
        const ScannerThread scanner(scan, way.pace, way.writing);
        window.run(scan);
        for (const VolumeMoments& volume : window.moments()) {
            const BenchClock::time_point closed = scanner.closed(volume.measured);
            taken.push_back(millisecondsBetween(closed, volume.read) - way.settling);
            shown.push_back(millisecondsBetween(closed, volume.shown));
        }
    }
    std::printf("%s, %zu volumes, settling %d ms\n", way.name, taken.size(), way.settling);
    if (taken.empty())
        return;
    print("read, beyond settling", taken);
    print("feedback shown", shown);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    VeloCortivoApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 300;
    std::printf("64x64x25, milliseconds from the closing of the volume's last file\n%-24s",
                "  volumes per class");
    for (const char* range :
         {"0-1", "1-2", "2-5", "5-10", "10-15", "15-20", "20-50", "50-100", ">100"})
        std::printf(" %6s", range);
    std::printf("   median 99 of 100 longest\n");
    for (const Way& way : ways)
        measure(way, volumes);
    return 0;
}
