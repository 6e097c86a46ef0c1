// Times of one plot of a region, and of the strip of times: the new content, and painting it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"
#include "processor_time.h"
#include "run/document/timing_table.h"
#include "volume/ui/timing_strip_content.h"

#include <QApplication>
#include <cmath>
#include <cstdio>

namespace {

constexpr int runs = 201;

/// A noisy curve over twenty intervals of two conditions, with a line at the current volume.
PlotContent timeCourse(int nrOfValues) {
    PlotContent content;
    content.title = "ROI 1";
    content.xLabel = "Time (scans)";
    content.yLabel = "fMRI signal";
    PlotCurve curve{"Mean", QColor(240, 240, 240), {}, {}};
    for (int i = 0; i < nrOfValues; ++i)
        curve.values.push_back(float(1000 + 20 * std::sin(i / 8.0) + i * 7919 % 17));
    content.curves = {std::move(curve)};
    for (int i = 0; i < 20; ++i)
        content.bands.push_back({nrOfValues * i / 20.0, nrOfValues * (i + 0.5) / 20.0,
                                 i % 2 ? Qt::blue : Qt::red, i % 2 ? "Faces" : "Houses"});
    content.lines = {{nrOfValues - 1.0, Qt::Vertical, Qt::cyan, ""}};
    return content;
}

PlotContent betas() {
    PlotContent content;
    content.title = "ROI 1";
    for (int i = 0; i < 6; ++i)
        content.bars.push_back({QString("Condition %1").arg(i + 1), Qt::red, float(i) - 2, 0.3f});
    return content;
}

void measure(const char* name, const PlotContent& content, QSize size) {
    Plotter plotter;
    plotter.resize(size);
    const double given = medianTime(runs, [&] { plotter.setContent(content); });
    const double painted = medianTime(runs, [&] {
        plotter.setContent(content);
        (void)plotter.picture();
    });
    std::printf("%-22s  %4d x %3d  %8.3f  %8.3f\n", name, size.width(), size.height(), given,
                painted);
}

/// Each volume passes all stages; some take long.
VolumeLedger ledgerOf(int nrOfVolumes) {
    constexpr qint64 TR = 2'000'000; // microseconds
    VolumeLedger ledger;
    ledger.begin(0, 2000.0);
    for (qint64 volume = 0; volume < nrOfVolumes; ++volume) {
        qint64 now = volume * TR;
        ledger.startVolume(now);
        ledger.volumeRead(now += 20'000, {});
        for (size_t stage = size_t(VolumeStage::Journal); stage < nrOfVolumeStages; ++stage) {
            ledger.enter(VolumeStage(stage), now);
            now += 20'000 + volume * 7919 % 100'000;
        }
        ledger.settle(now);
    }
    return ledger;
}

/// All that a volume costs: content, picture, numbers below it, warnings.
void measureStrip(int nrOfVolumes, QSize size) {
    const VolumeLedger ledger = ledgerOf(nrOfVolumes);
    Plotter plotter;
    plotter.resize(size);
    const double given = medianTime(runs, [&] {
        plotter.setContent(timingStripContent(ledger, nrOfVolumes));
        (void)timingReadOut(ledger);
        (void)timingWarnings(ledger);
    });
    const double painted = medianTime(runs, [&] {
        plotter.setContent(timingStripContent(ledger, nrOfVolumes));
        (void)plotter.picture();
    });
    std::printf("times of %4d volumes   %4d x %3d  %8.3f  %8.3f\n", nrOfVolumes, size.width(),
                size.height(), given, painted);
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    std::printf("Milliseconds of processor time, median of 201\n");
    std::printf("plot                          size   content  painted\n");
    for (const QSize size : {QSize(150, 100), QSize(240, 160), QSize(1200, 800)}) {
        measure("curve of 500 points", timeCourse(500), size);
        measure("curve of 5000 points", timeCourse(5000), size);
        measure("6 bars", betas(), size);
    }
    for (const int nrOfVolumes : {10, 150, 1000})
        measureStrip(nrOfVolumes, QSize(618, 150));
}
