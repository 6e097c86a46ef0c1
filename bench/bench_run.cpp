// Whole runs through the loop: the time of a volume on one thread and on several, or, with the
// argument "length", its time early and late and the memory of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "head_run.h"
#include "run_threads.h"
#include "silent_display.h"

#include "run/session/run_session.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>

namespace {

/// Processor time, so that other programs don't count.
double milliseconds() {
    return double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
}

double megabytes(size_t bytes) {
    return double(bytes) / (1 << 20);
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// Records the time of each volume's last action: the update of the views, or the status text.
class BenchmarkDisplay : public SilentDisplay {
public:
    std::vector<double> ends;

    void showLogText(const QString&) override { ends.push_back(milliseconds()); }
    void updateViews() override { ends.back() = milliseconds(); }
};

constexpr int nrOfConditions = 6; // with a constant and a trend eight predictors

double medianAround(const std::vector<double>& times, size_t centre) {
    std::vector<double> near(times.begin() + ptrdiff_t(centre - 9),
                             times.begin() + ptrdiff_t(centre + 9));
    std::nth_element(near.begin(), near.begin() + 9, near.end());
    return near[9];
}

void measure(const HeadRunSize& size, double budget, int volumes, bool preprocessing) {
    QTemporaryDir folder;
    QtEventPump pump;
    BenchmarkDisplay display;
    RunSession session(pump, display);
    std::vector<double> starts;
    session.makeReader = [&](const IntakeContext& context) {
        return std::make_unique<HeadRunReader>(context.project, size,
                                               [&] { starts.push_back(milliseconds()); });
    };
    session.settings.MotionCorrection = preprocessing;
    session.settings.SpatialGaussianSmoothing = preprocessing;
    session.settings.NrOfThreads = 1;
    if (!writeHeadRun(folder.path(), size, volumes, nrOfConditions, session.settings)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    session.runButtonPressed();
    // The first text is that of the start.
    std::vector<double> times;
    for (size_t i = 0; i < starts.size() && i + 1 < display.ends.size(); ++i)
        times.push_back(display.ends[i + 1] - starts[i]);
    if (times.size() < size_t(volumes) || volumes < 100) {
        std::printf("run too short\n");
        return;
    }
    const size_t volumeBytes = size.bytes() * size_t(volumes);
    std::printf("%4dx%3dx%2d %7s %9d %12.2f %12.2f %8.0f %14.0f %15.0f\n", size.columns, size.rows,
                size.slices, preprocessing ? "yes" : "no", volumes, medianAround(times, 50),
                medianAround(times, size_t(volumes) - 10), budget, megabytes(volumeBytes),
                peakMegabytes() - megabytes(volumeBytes));
}

void measureLength(int volumes) {
    std::printf("Milliseconds of processor time for one volume; motion correction and smoothing of "
                "5 mm where \"motion\" says yes\n"
                "size        motion   volumes     ms at 50  ms near end   budget  volumes in MB  "
                "peak beside MB\n");
    constexpr double budgets[] = {8.0, 20.0, 70.0}; // with motion correction and smoothing
    for (size_t i = 0; i < std::size(headRunSizes); ++i)
        for (const bool preprocessing : {false, true})
            measure(headRunSizes[i], budgets[i], volumes, preprocessing);
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    if (argc > 1 && std::string_view(argv[1]) == "length")
        measureLength(argc > 2 ? std::atoi(argv[2]) : 600);
    else
        measureThreads(argc > 1 ? std::max(std::atoi(argv[1]), 1) : 24,
                       argc > 2 ? std::atoi(argv[2]) : 2, argc > 3 ? std::atoi(argv[3]) : 0);
    return 0;
}
