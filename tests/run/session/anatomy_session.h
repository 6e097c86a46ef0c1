// A simulated run beside an anatomy, with positions that are known in scanner coordinates.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/simulated_session.h"
#include "volume/anatomy/vmr_volume.h"

#include <cmath>
#include <numbers>

inline SimulationOptions smallRun(ScannerType type) {
    SimulationOptions options;
    options.type = type;
    options.sizeX = 32;
    options.sizeY = 32;
    options.nrOfSlices = 6;
    options.sliceDistance = 5.0;
    options.nrOfVolumes = 26;
    options.blockLength = 4;
    return options;
}

/// A cube with one bright voxel.
inline QByteArray vmrWith(int x, int y, int z) {
    QByteArray bytes("\0\1\0\1\0\1", 6);
    bytes.append(QByteArray(256 * 256 * 256, '\0'));
    bytes[6 + (z * 256 + y) * 256 + x] = char(200);
    return bytes;
}

inline QByteArray posText(const Point& first, const Point& last, const Point& row,
                          const Point& column, int version = 3) {
    const auto line = [](const Point& p) {
        return formatted("X: %g Y: %g Z: %g\n", p.x, p.y, p.z);
    };
    return formatted("FileVersion: %i\nSourceFile: \"a\"\nCoordinateSystem: 1\n", version) +
           line(first) + (version < 3 ? QByteArray() : line(last)) + line(row) + line(column) +
           "Rows: 32\nColumns: 32\nFoVRows: 192\nFoVCols: 192\nThickness: 5\nGap: 0\n";
}

// Sagittal, from right to left: x to the back, y down, z to the left.
inline constexpr Point anatomyCentre{3.0, -20.0, 10.0};
inline QByteArray anatomyPositions(int version = 3) {
    return posText({anatomyCentre.x - 127.5, anatomyCentre.y, anatomyCentre.z},
                   {anatomyCentre.x + 127.5, anatomyCentre.y, anatomyCentre.z}, {0, 1, 0},
                   {0, 0, -1}, version);
}
inline Point inAnatomy(const Point& scanner) {
    return {127.5 + scanner.y - anatomyCentre.y, 127.5 - scanner.z + anatomyCentre.z,
            127.5 + scanner.x - anatomyCentre.x};
}

class AnatomySession : public SimulatedSession {
public:
    explicit AnatomySession(ScannerType type = ScannerType::AnalyzeNw)
        : SimulatedSession(smallRun(type)) {
        writeAll();
        put("anatomy.vmr", vmrWith(100, 110, 120));
        put("anatomy.pos", anatomyPositions());
        setOverlay(1, "FMRVMRAlignVMRPosFile: \"./anatomy.pos\"\n"
                      "IntraSessionVMRFile: \"./anatomy.vmr\"\n");
        EXPECT_TRUE(session.inspectSettings());
        if (type == ScannerType::AnalyzeNw)
            putRunPositions();
    }
    void put(const QString& name, const QByteArray& bytes) const {
        writeFile(folder.filePath(name), bytes);
    }
    void setOverlay(int mode, const QByteArray& files) {
        QByteArray text = contentOf(folder.filePath("Simulation-1.vco"));
        const qsizetype start = text.indexOf("OverlayOnVMRMode:");
        text.replace(start, text.indexOf("OverlayOnSRFMode:") - start,
                     formatted("OverlayOnVMRMode: %i\n", mode) + files);
        setFlip(text, "0");
        put("Simulation-1.vco", text);
    }
    void flipSlices() const {
        QByteArray text = contentOf(folder.filePath("Simulation-1.vco"));
        setFlip(text, "1");
        put("Simulation-1.vco", text);
    }
    /// Oblique: turned by 30 degrees about the axis from left to right.
    void putRunPositions() const {
        const Point normal = stackDirection();
        const auto at = [&](double mm) {
            return Point{runCentre.x, runCentre.y + mm * normal.y, runCentre.z + mm * normal.z};
        };
        writeFile(watchFolder() + session.settings.philipsFilePrefix + "00001.pos",
                  posText(at(-12.5), at(12.5), {1, 0, 0}, {0, normal.z, -normal.y}));
    }
    [[nodiscard]] static Point stackDirection() {
        const double angle = std::numbers::pi / 6.0;
        return {0.0, std::sin(angle), std::cos(angle)};
    }
    /// Where a voxel of the oblique run is: 6 x 6 x 5 mm.
    [[nodiscard]] static Point placeInScanner(int x, int y, int slice) {
        const Point normal = stackDirection();
        const double down = (y - 15.5) * 6.0;
        const double up = (slice - 2.5) * 5.0;
        return {runCentre.x + (x - 15.5) * 6.0, runCentre.y + down * normal.z + up * normal.y,
                runCentre.z - down * normal.y + up * normal.z};
    }
    [[nodiscard]] Anatomy& anatomy() const { return session.anatomicalDocument->anatomy; }

    static constexpr Point runCentre{-4.0, 12.0, 22.0};

private:
    static void setFlip(QByteArray& text, const QByteArray& value) {
        const qsizetype start = text.indexOf("FlipSliceOrderInVolumeView:");
        text.replace(start, text.indexOf('\n', start) - start,
                     "FlipSliceOrderInVolumeView: " + value);
    }
};
