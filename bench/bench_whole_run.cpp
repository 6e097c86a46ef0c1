// Time of fitting a complete run in memory, and three runs from their files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/multi_study_design.h"
#include "stats/whole_run_glm.h"
#include "volume/fmr_file.h"
#include "volume/fmr_project.h"
#include "volume/stc_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <random>

namespace {

constexpr int nrOfVolumes = 300;
constexpr int nrOfPredictors = 8;

class NoProgress : public ProgressReporter {
public:
    void setProgress(int) override {}
};

bool makeVolumes(FMRProject& project) {
    project.ResolutionX = 104;
    project.ResolutionY = 104;
    project.NrOfSlices = 72;
    project.NrOfVolumes = nrOfVolumes;
    if (!project.allocateVolumes())
        return false;
    std::minstd_rand random(1);
    for (size_t v = 0; v < project.volumes.size(); ++v)
        for (int16_t& sample : project.volumes[v])
            sample = int16_t(900 + (random() >> 8) % 64);
    return true;
}

/// 6 conditions, a constant and a trend.
WholeRunDesign makeDesign() {
    WholeRunDesign design;
    design.studies.resize(1);
    design.studies[0].dataPoints = nrOfVolumes;
    design.predictors.resize(nrOfPredictors);
    for (int j = 0; j < nrOfPredictors; ++j)
        design.conditionOfColumn.push_back(j < nrOfPredictors - 2 ? j : -1);
    for (int t = 0; t < nrOfVolumes; ++t) {
        for (int j = 0; j < nrOfPredictors - 2; ++j)
            design.GLMDesign.push_back(
                std::max(0.0f, std::sin(float(t * 6 + j * 60) * 0.0174533f)));
        design.GLMDesign.push_back(1.0f);
        design.GLMDesign.push_back(float(t) / nrOfVolumes * 2 - 1);
    }
    return design;
}

/// Milliseconds of the clock and of the processor.
struct Times {
    double clock = 1e9;
    double processor = 1e9;
};

using Clock = std::chrono::steady_clock;

/// Lowers the times to those of one more fit.
void measure(Times& best, const WholeRunDesign& design, const VolumeSize& size,
             SliceSource& samples) {
    WholeRunModel model;
    NoProgress progress;
    const Clock::time_point start = Clock::now();
    const std::clock_t processorStart = std::clock();
    if (fitWholeRunModel(model, design, size, samples, progress) != WholeRunFit::Done)
        std::fputs("the fit failed\n", stderr);
    const double processor = double(std::clock() - processorStart) * 1000.0 / CLOCKS_PER_SEC;
    const std::chrono::duration<double, std::milli> clock = Clock::now() - start;
    best.clock = std::min(best.clock, clock.count());
    best.processor = std::min(best.processor, processor);
}

/// Takes a file out of the page cache, so that it is read from the disk.
void forgetFile(const QString& path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        (void)posix_fadvise(file.handle(), 0, 0, POSIX_FADV_DONTNEED);
}

double millisecondsToRead(const QStringList& files) {
    std::vector<char> buffer(size_t(1) << 20);
    const Clock::time_point start = Clock::now();
    for (const QString& path : files) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            continue;
        while (file.read(buffer.data(), qint64(buffer.size())) > 0) {
        }
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Three runs of a third of the volumes each. In the current folder, whose disk may be a real one.
void measureRunsOnDisk(FMRProject& project, const WholeRunDesign& oneRun) {
    constexpr int runs = 3;
    QTemporaryDir folder("bench_whole_run-XXXXXX");
    WholeRunDesign design = oneRun;
    design.studies.clear();
    MultiStudyList list;
    QStringList files;
    project.targetFolder = folder.path() + "/";
    for (int run = 1; run <= runs; ++run) {
        project.Prefix = QString("run%1").arg(run);
        const QString header = folder.filePath(project.Prefix + ".fmr");
        if (!writeSTCData(project, nrOfVolumes / runs, nullptr, nullptr, 0, 0) ||
            !writeFMRHeader(project, header, nrOfVolumes / runs)) {
            std::fputs("no room for the files\n", stderr);
            return;
        }
        files << stcFileName(project);
        design.studies.push_back({nrOfVolumes / runs, header, {}, 1});
        list.studies = design.studies;
    }
    for (const bool cached : {true, false}) {
        double reading = 1e9;
        Times best;
        for (int i = 0; i < 3; ++i) {
            const auto forget = [&] {
                for (const QString& file : files)
                    if (!cached)
                        forgetFile(file);
            };
            forget();
            reading = std::min(reading, millisecondsToRead(files));
            forget();
            const std::unique_ptr<SliceSource> samples = openRunsOnDisk(list);
            if (samples)
                measure(best, design, project.size(), *samples);
        }
        std::printf("%-30s  %7.0f  %9.0f  %6.0f\n",
                    cached ? "three runs, files cached" : "three runs from disk", best.clock,
                    best.processor, 2 * reading);
    }
}

} // namespace

int main() {
    FMRProject project;
    if (!makeVolumes(project)) {
        std::fputs("not enough memory\n", stderr);
        return 1;
    }
    std::printf("Milliseconds, best of 5; %d volumes of 104 x 104 x 72 in memory, %d predictors, "
                "all voxels\n%-30s    clock  processor  budget\n",
                nrOfVolumes, nrOfPredictors, "");
    struct Case {
        const char* name;
        ZTransformation transformation;
        bool corrects;
        double budget;
    };
    for (const Case& each :
         {Case{"plain", ZTransformation::None, false, 1000},
          Case{"z transformation", ZTransformation::Study, false, 1000},
          Case{"serial correlations corrected", ZTransformation::None, true, 4000}}) {
        WholeRunDesign design = makeDesign();
        design.transformation = each.transformation;
        design.CorrectSerialCorrelations = each.corrects;
        Times best;
        RunInMemory samples(project);
        for (int i = 0; i < 5; ++i)
            measure(best, design, project.size(), samples);
        std::printf("%-30s  %7.0f  %9.0f  %6.0f\n", each.name, best.clock, best.processor,
                    each.budget);
    }
    measureRunsOnDisk(project, makeDesign());
    return 0;
}
