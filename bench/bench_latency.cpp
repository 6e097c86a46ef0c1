// Latency from noticing a mosaic file to the status text of its volume, at three sizes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "live_scan.h"
#include "silent_display.h"

#include "run/session/run_session.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <clocale>
#include <cstdio>

namespace {

class StatusClock : public SilentDisplay {
public:
    std::vector<BenchClock::time_point> texts;

    void showLogText(const QString&) override { texts.push_back(BenchClock::now()); }
};

void measure(int columns, int slices, int volumes) {
    QTemporaryDir folder;
    const SimulatedScan scan(scanOptions(folder.path(), columns, slices, volumes));
    if (!prepareScan(scan)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    NoticingPump pump;
    StatusClock display;
    RunSession session(pump, display);
    session.settings.settingsFilePath = folder.filePath(scan.options().name + "-1.vco");
    {
        const ScannerThread scanner(scan, 250);
        session.runButtonPressed();
    }
    // The first file is noticed once more, for the first volume; the first text is that of the
    // start.
    std::vector<double> times;
    for (size_t i = 0; i + 1 < pump.noticed.size() && i + 1 < display.texts.size(); ++i)
        times.push_back(millisecondsBetween(pump.noticed[i + 1], display.texts[i + 1]));
    if (times.empty())
        return;
    std::sort(times.begin(), times.end());
    std::printf("%4dx%3dx%2d %6zu %10.1f %10.1f %10.1f\n", columns, columns, slices, times.size(),
                times[times.size() / 2], times[times.size() * 99 / 100], times.back());
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 102;
    std::printf("file noticed to status text, settling of 30 ms included, milliseconds\n"
                "size        files     median   99 of 100    longest\n");
    measure(64, 25, volumes);
    measure(74, 36, volumes);
    measure(104, 72, volumes);
    return 0;
}
