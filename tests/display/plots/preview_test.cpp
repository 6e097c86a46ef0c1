// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"

#include "support/scripted_messages.h"

#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <map>

namespace {

TEST(Preview, Show) {
    PlotContent content;
    content.title = "ROI 1";
    content.xLabel = "Time (scans)";
    content.yLabel = "fMRI signal (%)";
    PlotCurve a{"Data", QColor(230, 230, 230), {}, {}};
    PlotCurve b{"Model", QColor(255, 180, 0), {}, {}};
    for (int i = 0; i < 500; ++i) {
        a.values.push_back(float(100 + 3 * std::sin(i / 12.0) + std::sin(i * 1.7)));
        b.values.push_back(float(100 + 3 * std::sin(i / 12.0)));
    }
    content.curves = {a, b};
    for (int i = 0; i < 10; ++i)
        content.bands.push_back({i * 50.0, i * 50.0 + 20,
                                 i % 2 ? QColor(0, 0, 200) : QColor(220, 0, 0),
                                 i % 2 ? "Houses" : "Faces"});
    content.lines = {{480, Qt::Vertical, QColor(47, 196, 178), "now"},
                     {101.5, Qt::Horizontal, Qt::yellow, "limit"}};
    PlotContent bars;
    bars.title = "ROI 1 betas";
    bars.yLabel = "% signal";
    bars.bars = {{"Faces", Qt::red, 1.2f, 0.2f},
                 {"Houses", Qt::blue, -0.6f, 0.25f},
                 {"A very long name of a condition", Qt::green, 0.3f, 0.1f}};
    PlotContent average;
    average.xLabel = "Time (scans)";
    average.yLabel = "fMRI response (% BOLD signal)";
    average.xStart = -2;
    average.curves = {
        {"Faces",
         QColor(255, 80, 80),
         {0, 0.1f, 0.2f, 0.9f, 1.4f, 1.2f, 0.5f, 0.1f, -0.2f, 0},
         {0.1f, 0.1f, 0.1f, 0.2f, 0.2f, 0.2f, 0.2f, 0.2f, 0.1f, 0.1f}},
        {"Houses", QColor(0, 0, 160), {0, -0.1f, 0.1f, 0.4f, 0.6f, NAN, 0.5f, NAN, -0.2f, 0}, {}}};
    average.lines = {{0, Qt::Vertical, Qt::white, "onset"}};
    PlotContent none;
    none.title = "ROI 2";
    none.note = "The curve begins with the next volume.";
    none.bands = content.bands;
    int n = 0;
    std::map<int, QImage> sheets;
    for (const auto& c : {content, bars, average, none}) {
        for (QSize size : {QSize(150, 100), QSize(240, 160), QSize(480, 300), QSize(1200, 800)}) {
            Plotter plotter;
            plotter.resize(size);
            plotter.setContent(c);
            QImage& sheet = sheets[size.width()];
            const QImage one = plotter.picture().toImage();
            if (sheet.isNull()) {
                sheet = QImage(one.width() * 2 + 8, one.height() * 2 + 8, QImage::Format_RGB32);
                sheet.fill(Qt::magenta);
            }
            QPainter p(&sheet);
            p.drawImage(QRect(QPoint((n % 2) * (one.width() + 8), (n / 2) * (one.height() + 8)),
                              one.size()),
                        one);
            p.end();
            (void)sheet.save(QString("/tmp/sheet_%1_%2.png")
                                 .arg(size.width())
                                 .arg(qEnvironmentVariable("QT_SCALE_FACTOR", "1")));
        }
        ++n;
    }
}

} // namespace
