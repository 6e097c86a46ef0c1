// From a mosaic file's being noticed to the feedback on the subject's screen, and to its picture in
// the feedback folder, at three sizes: the real window, three regions, both displays painted.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback_window.h"

#include "run/window/velo_cortivo_application.h"

#include <algorithm>
#include <cstdio>

namespace {

void printHistogram(const std::vector<double>& times) {
    constexpr double width = 5.0;
    const auto last = size_t(times.back() / width);
    for (auto bin = size_t(times.front() / width); bin <= last; ++bin) {
        const auto count = std::ranges::count_if(
            times, [bin](double time) { return size_t(time / width) == bin; });
        if (count > 0)
            std::printf("    %3.0f-%3.0f ms %4td\n", double(bin) * width, double(bin + 1) * width,
                        count);
    }
}

void measure(int columns, int slices, int volumes) {
    QTemporaryDir folder;
    SimulationOptions options = scanOptions(folder.path(), columns, slices, volumes);
    options.motion = HeadMotion::Drift; // and its correction
    options.smoothingWidth = 5;
    const SimulatedScan scan(options);
    if (!prepareScan(scan)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    FeedbackWindow window(folder.path());
    {
        const ScannerThread scanner(scan, {.shortest = 400, .longest = 400});
        window.run(scan);
    }
    std::vector<double> times;
    for (const VolumeMoments& volume : window.moments())
        times.push_back(volume.sinceNoticed);
    if (times.empty())
        return;
    std::ranges::sort(times);
    std::printf("%-28s %6zu %9.0f %9.0f %9.0f\n",
                qPrintable(QStringLiteral("%1x%1x%2").arg(columns).arg(slices)), times.size(),
                times[times.size() / 2], times[times.size() * 99 / 100], times.back());
    printHistogram(times);
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    VeloCortivoApplication application(argc, argv);
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 112;
    std::printf("file noticed to feedback shown and in the folder, settling of 30 ms included\n"
                "size                          files    median 99 of 100   longest  (ms)\n");
    measure(64, 25, volumes);
    measure(74, 36, volumes);
    measure(104, 72, volumes);
    return 0;
}
