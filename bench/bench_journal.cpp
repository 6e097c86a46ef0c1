// What the journal costs the loop: adding a volume while the thread writes to a file beside this
// program. Wall time, in which other programs count, and processor time of the adding thread.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clock_time.h"
#include "processor_time.h"
#include "run/journal/journal_writer.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>
#include <sys/resource.h>

namespace {

struct Size {
    int matrix;
    int slices;
};

struct Times {
    std::vector<double> wall;
    std::vector<double> processor;
};

long pageFaults() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_minflt;
}

void wait(double waitMilliseconds) {
    const timespec time{0, long(waitMilliseconds * 1e6)};
    nanosleep(&time, nullptr);
}

double mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}

std::span<const uint8_t> bytesOf(const std::vector<int16_t>& samples) {
    return {reinterpret_cast<const uint8_t*>(samples.data()), samples.size() * sizeof(int16_t)};
}

void printSize(const QString& folder, const Size& size, double pauseMilliseconds) {
    constexpr int nrOfVolumes = 200;
    constexpr int nrOfFirstVolumes = 3;
    // Several volumes, as those of a run do not lie in the cache either.
    std::vector<std::vector<int16_t>> volumes(
        16, std::vector<int16_t>(size_t(size.matrix * size.matrix * size.slices)));
    std::minstd_rand random(1);
    for (std::vector<int16_t>& volume : volumes)
        for (int16_t& sample : volume)
            sample = int16_t(random() >> 8 & 2047);

    JournalWriter writer(createJournalFile(folder + "/bench.journal"));
    const std::array<uint8_t, 16> arrival{};
    Times times;
    bool good = true;
    long faults = 0;
    for (int v = 0; v < nrOfVolumes; ++v) {
        const std::vector<int16_t>& volume = volumes[size_t(v) % volumes.size()];
        if (v == nrOfFirstVolumes)
            faults = pageFaults();
        times.wall.push_back(clockTime([&] {
            const double before = threadMilliseconds();
            good = writer.add(1, {arrival, bytesOf(volume)}) && good;
            times.processor.push_back(threadMilliseconds() - before);
        }));
        wait(pauseMilliseconds);
    }
    faults = pageFaults() - faults;
    good = writer.finish() && good;
    QFile::remove(folder + "/bench.journal");
    std::printf("%3d x %3d x %2d  %5.0f  %9.3f  %7.3f  %14.3f  %7.3f  %15.3f  %11ld%s\n",
                size.matrix, size.matrix, size.slices, pauseMilliseconds, mean(times.wall),
                *std::ranges::max_element(times.wall), mean(times.processor),
                *std::ranges::max_element(times.processor), times.processor.front(), faults,
                good ? "" : "  FAILED");
}

} // namespace

int main(int, char** arguments) {
    const QFileInfo program(QString::fromLocal8Bit(arguments[0]));
    const QTemporaryDir folder(program.absolutePath() + "/bench_journal_XXXXXX");
    std::printf(
        "Milliseconds for adding one of 200 volumes, the first of them included in mean and "
        "maximum;\npage faults of all but the first three\n"
        "size            pause  wall mean      max  processor mean      max  "
        "  the first one  page faults\n");
    for (const Size& size : {Size{64, 25}, Size{74, 36}, Size{104, 72}})
        printSize(folder.path(), size, 50);
    printSize(folder.path(), {104, 72}, 5);
}
