// Times of one plot of a region: its new content, and painting it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"
#include "processor_time.h"

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
}
