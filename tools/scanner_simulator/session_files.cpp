// SPDX-License-Identifier: GPL-3.0-or-later
#include "session_files.h"

#include "base/file_writing.h"
#include "base/paths.h"
#include "protocol_files.h"
#include "watch_folder.h"

#include <QDir>
#include <functional>

namespace {

void addHead(SettingsLines& lines, const RunDescription& run) {
    lines.blank();
    lines.number("FileVersion:", 4);
    lines.blank();
    lines.number("MergeType:", 0);
    lines.blank();
    lines.quoted("Title:", run.title);
    lines.blank();
    lines.quoted("ParadigmHelpFile:", "");
    lines.plain("IFISfMRIAnalysisTests:", "tdat");
    lines.plain("IFISfMRIAnalysisOptions:", "tdat");
    lines.blank();
    lines.number("RawDataBigEndian:", run.format->isBigEndian() ? 1 : 0);
    lines.blank();
    lines.number("ShowGODlgAfterPreparation:", 0);
    lines.blank();
    addWatchFolderEntry(lines, run.options);
    lines.quoted("TargetFolder:", "./results/");
    lines.blank();
}

void addScanner(SettingsLines& lines, const RunDescription& run) {
    lines.plain("DataType:", nameOf(run.options.type).dataType);
    lines.blank();
    if (run.options.type != ScannerType::GeHdxtDicom) { // has no entries
        run.format->addTypeBlock(lines);
        lines.blank();
    }
    lines.number("TimeOutSeconds:", 30);
    lines.blank();
    lines.number("MatrixSizeX:", run.geometry.sizeX);
    lines.number("MatrixSizeY:", run.geometry.sizeY);
    lines.blank();
    run.format->addMosaicEntries(lines);
}

void addRun(SettingsLines& lines, const RunDescription& run) {
    const QString base = QString("%1-%2").arg(run.options.name).arg(run.options.run);
    lines.number("NrOfVolumes:", run.options.nrOfVolumes);
    lines.number("NrOfVolumesToSkip:", run.options.nrOfVolumesToSkip);
    lines.blank();
    lines.number("NrOfSlices:", run.geometry.nrOfSlices);
    lines.blank();
    lines.quoted("SlicePrefix:", base + "-");
    lines.quoted("ProjectName:", base);
    lines.blank();
    lines.number("TR:", run.options.repetitionTime);
    lines.number("InterSliceTime:", double(run.options.repetitionTime) / run.geometry.nrOfSlices);
    lines.blank();
    lines.quoted("ROIColorsFile:", "");
    lines.blank();
    lines.number("MultiSliceROISelection:", 1);
    lines.blank();
}

const char* protocolKey(ProtocolKind kind) {
    switch (kind) {
    case ProtocolKind::Rtp:
        return "RealTimeProtocol:";
    case ProtocolKind::Tdat:
        return "TDatFile:";
    case ProtocolKind::Prt:
        break;
    }
    return "StimulationProtocol:";
}

void addAnalysis(SettingsLines& lines, const RunDescription& run) {
    const int columns = run.geometry.mosaicTiles();
    const int rows = (run.geometry.nrOfSlices + columns - 1) / columns;
    lines.number("Threshold:", 3);
    lines.number("ClusterSizePixels:", 4);
    lines.blank();
    lines.number("NrOfColumns:", columns);
    lines.number("NrOfRows:", rows);
    lines.blank();
    lines.number("ForceTRDelay:", 0);
    lines.blank();
    lines.quoted(protocolKey(run.options.protocol), "./" + protocolFileName(run.options));
    lines.quoted("ContrastFile:", "");
    lines.blank();
    lines.number("AutoContrastGenerationLevel:", 2);
    lines.blank();
    lines.number("DriftConfoundPredictors:", 1);
    lines.blank();
    lines.number("MotionCorrection:", run.options.motion == HeadMotion::None ? 0 : 1);
    lines.blank();
    const int width = run.options.smoothingWidth;
    lines.number("SpatialGaussianSmoothing:", width > 0 ? 1 : 0);
    lines.number("SpatialSmoothingFWHM:", width > 0 ? width : 4);
    lines.blank();
}

void addOverlays(SettingsLines& lines) {
    lines.number("OverlayInplaneData:", 0);
    lines.blank();
    lines.number("FlipSliceOrderInVolumeView:", 1);
    lines.blank();
    lines.number("IntraSessionMotionCorrection:", 0);
    lines.blank();
    lines.number("OverlayOnVMRMode:", 0);
    lines.blank();
    lines.number("OverlayOnSRFMode:", 0);
    lines.blank();
    lines.quoted("FeedbackTargetFolder:", "./results/");
}

/// The size of a volume, then a character for each voxel.
QByteArray voxelCharacters(const ScanGeometry& geometry,
                           const std::function<char(size_t voxel)>& characterOf) {
    QByteArray text = formatted("%i %i %i\n", geometry.sizeX, geometry.sizeY, geometry.nrOfSlices);
    size_t voxel = 0;
    for (int slice = 0; slice < geometry.nrOfSlices; ++slice) {
        text += '\n';
        for (int y = 0; y < geometry.sizeY; ++y) {
            for (int x = 0; x < geometry.sizeX; ++x, ++voxel)
                text += characterOf(voxel);
            text += '\n';
        }
    }
    return text;
}

} // namespace

RunDescription runDescription(const SimulationOptions& options, const ScanGeometry& geometry) {
    return {experimentName(options) + ", simulated, run " + QString::number(options.run), options,
            geometry, scannerFormat(options)};
}

QString settingsFileName(const SimulationOptions& options) {
    return QString("%1-%2.vco").arg(options.name).arg(options.run);
}

bool writeSettingsFile(const RunDescription& run) {
    const SimulationOptions& options = run.options;
    return makeWatchFolder(options) && QDir().mkpath(paths::join(options.folder, "results")) &&
           writeFileAtomically(paths::join(options.folder, settingsFileName(options)),
                               settingsText(run));
}

QByteArray settingsText(const RunDescription& run) {
    SettingsLines lines;
    addHead(lines, run);
    addScanner(lines, run);
    addRun(lines, run);
    addAnalysis(lines, run);
    addOverlays(lines);
    return lines.text();
}

QByteArray motionText(const std::vector<HeadPose>& poses) {
    QByteArray text =
        "# Where the simulated head is, one line for each measured volume, skipped ones included.\n"
        "# x to the left of the head, y to its back, z to its top; the head turns about the x,\n"
        "# then the y, then the z axis through the centre of the volume and then moves.\n"
        "# volume from 1, translations x y z in mm, rotations about x y z in degrees\n";
    for (size_t volume = 0; volume < poses.size(); ++volume) {
        const HeadPose& pose = poses[volume];
        text += formatted("%4i %9.5f %9.5f %9.5f %9.5f %9.5f %9.5f\n", int(volume + 1),
                          pose.translation[0], pose.translation[1], pose.translation[2],
                          pose.rotation[0], pose.rotation[1], pose.rotation[2]);
    }
    return text;
}

QByteArray activeText(const ScanGeometry& geometry, const std::vector<RespondingRegion>& regions,
                      const std::vector<uint8_t>& active) {
    QByteArray text = "# Voxels of the head at rest that respond to a condition.\n"
                      "# One digit for each voxel: x fastest, a row of x on each line, then y,\n"
                      "# then slices with a blank line between them. 0 responds to none.\n";
    for (size_t region = 0; region < regions.size(); ++region)
        text += formatted("# %i ", int(region + 1)) + regions[region].name.toUtf8() + '\n';
    return text +
           voxelCharacters(geometry, [&](size_t voxel) { return char('0' + active[voxel]); });
}

QByteArray preferenceText(const ScanGeometry& geometry,
                          const std::vector<SimulatedCondition>& conditions,
                          const std::vector<int8_t>& preferences) {
    QByteArray text = "# Voxels of the head at rest with a fine pattern: they respond to both\n"
                      "# conditions, and more to the one that they prefer.\n"
                      "# One character for each voxel, ordered as in active.txt.\n";
    text += "# + " + conditions[1].name.toUtf8() + "\n# - " + conditions[2].name.toUtf8() + '\n';
    return text + voxelCharacters(geometry, [&](size_t voxel) {
               return preferences[voxel] == 0 ? '.' : preferences[voxel] > 0 ? '+' : '-';
           });
}

QByteArray truthReadme() {
    return "What was put into each simulated run, in a folder named after its settings file:\n"
           "motion.txt has the position of the head in each volume, active.txt the map of the\n"
           "voxels that respond to a condition; with a fine pattern code.txt has the one that\n"
           "each of its voxels prefers. With mental tasks active.txt maps their regions, which\n"
           "regions.roi has for the program, and spelling.txt has the letters. The texts explain\n"
           "themselves in their first lines.\n";
}
