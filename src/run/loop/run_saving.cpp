// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/finished_run.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "regions/roi_file.h"
#include "run/document/amr_file.h"
#include "run/document/timing_table.h"
#include "run/loop/background_files.h"
#include "run/loop/motion_parameters_file.h"
#include "run/loop/run_anatomy.h"
#include "run/loop/run_statistics.h"
#include "run/protocol/prt_file.h"
#include "stats/contrast_file.h"
#include "stats/map_file.h"
#include "volume/anatomy/vmr_file.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

#include <QDir>

#include <algorithm>
#include <memory>

namespace {

struct SaveStep {
    int progressBefore; ///< percent, set before the step; -1 leaves it
    std::function<bool()> write;
    QString path = {}; ///< what it writes, to be read back; empty where filesReadBack() does more
};

// What the project file states beside the settings: the live layout and the protocol.
void updateProjectForSaving(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    FMRProject& project = document.project;
    project.LayoutNColumns = document.mosaic.MosaicColumns;
    project.LayoutNRows = document.mosaic.MosaicRows;
    project.SegmentSize = document.protocol.SegmentSize;
    project.SegmentOffset = document.protocol.SegmentOffset;
    project.ProtocolFiles.clear();
    if (isProtocolPathSet(document.protocol.protocolPath))
        project.ProtocolFiles << paths::fileName(document.protocol.protocolPath);
}

// What an earlier run left under the names is not of this one.
std::vector<SaveStep> inplaneSteps(const QtCortivoDoc& document) {
    const QString path = inplaneAmrPath(document.project.projectPath);
    if (document.slices.InplanePixmaps.empty()) {
        QFile::remove(path);
        return {};
    }
    return {{-1, [&document] { return writeInplaneImages(document); }, path}};
}

std::vector<SaveStep> cubeSteps(const RunParts& run) {
    const FMRProject& project = run.document.project;
    const VMRVolume& cube = run.anatomical.anatomy.functional.volume;
    const bool ofInplanes = !run.document.inplanes.samples.span().empty();
    for (const bool inplanes : {false, true})
        if (inplanes != ofInplanes || cube.empty())
            QFile::remove(cubeFilePath(project, inplanes));
    if (cube.empty())
        return {};
    const QString path = cubeFilePath(project, ofInplanes);
    return {{-1, [&cube, path] { return saveVMR(path, cube); }, path}};
}

SaveStep timingStep(const QtCortivoDoc& document) {
    const QString path = resultPath(document.project, "_timing.tsv", "noname_timing.tsv");
    const auto write = [&document, path] {
        if (writeFileAtomically(path, timingTable(document.ledger)))
            return true;
        showWarning(QStringLiteral("ERROR: Unable to write table of times \"%1\"!").arg(path));
        return false;
    };
    return {-1, write, path};
}

SaveStep protocolStep(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    // A failure clears the path, and the name of the file with it.
    return {0, [&run, &document, path = document.protocol.protocolPath] {
                const FMRProject& project = document.project;
                document.protocol.protocolPath = path;
                const bool written = writeRecordedPRTFile(document.protocol, project.projectPath,
                                                          project.targetFolder);
                updateProjectForSaving(run);
                return written;
            }};
}

// Data, then header: without its data a header would misread those that an earlier run left under
// the name. It names the protocol, and is written again when that is there.
std::vector<SaveStep> projectSteps(const RunParts& run, ProgressReporter& progress) {
    QtCortivoDoc& document = run.document;
    FMRProject& project = document.project;
    const int volumes = recordedVolumes(run.report, project);
    const auto dataWritten = std::make_shared<bool>(false);
    const auto writeData = [&run, &project, &progress, volumes, dataWritten] {
        *dataWritten = writeSTCData(project, volumes, &progress, &run.pump, 5, 80);
        // A model that an earlier run left under the name is not that of these data.
        if (*dataWritten)
            for (const QString& model : {modelFilePath(project), modelDesignFilePath(project)})
                QFile::remove(model);
        return *dataWritten;
    };
    const auto writeHeader = [&document, &project, volumes, dataWritten] {
        return *dataWritten && writeFMRHeader(project, project.projectPath, volumes) &&
               isProtocolPathSet(document.protocol.protocolPath);
    };
    return {{5, writeData}, {80, writeHeader}};
}

std::vector<SaveStep> statisticsSteps(const RunParts& run) {
    const QtCortivoDoc& document = run.document;
    const QString maps = resultPath(document.project, ".mps", "Maps.mps");
    const QString contrasts = resultPath(document.project, ".ctr", "Contrasts.ctr");
    const auto writeMaps = [&run, &document, maps] {
        return writeMapFile(maps, document.maps, run.requests.thresholds, document.contrasts);
    };
    const auto writeContrasts = [&document, contrasts] {
        return writeContrastFile(contrasts, document.contrasts,
                                 document.design.NrOfContrastPredictors);
    };
    return {{-1, writeMaps, maps}, {90, writeContrasts, contrasts}};
}

SaveStep regionStep(const RunParts& run) {
    const QString path = regionFilePath(run.document.project);
    const auto write = [&run, path] {
        return writeROIFile(path, run.document.regions, run.requests.regions);
    };
    return {-1, write, path};
}

std::vector<SaveStep> motionSteps(const RunParts& run) {
    const QtCortivoDoc& document = run.document;
    const FMRProject& project = document.project;
    if (!run.settings.MotionCorrection || document.motion.motionParameters[0].empty())
        return {};
    const int volumes = recordedVolumes(run.report, project);
    const auto write = [&document, &project, volumes] {
        return saveMotionParameters(document.motion, project, volumes);
    };
    return {{-1, write, motionParametersFileName(project)}};
}

/// In the order of the work.
std::vector<SaveStep> saveSteps(const RunParts& run, ProgressReporter& progress) {
    const QtCortivoDoc& document = run.document;
    const FMRProject& project = document.project;
    std::vector<SaveStep> steps;
    const auto add = [&steps](const std::vector<SaveStep>& more) {
        steps.insert(steps.end(), more.begin(), more.end());
    };
    add({protocolStep(run)});
    add(inplaneSteps(document));
    add({{-1, [&document] { return writeFirstVolumeImages(document); },
          amrPath(project.projectPath)}});
    add(projectSteps(run, progress));
    add(statisticsSteps(run));
    add({regionStep(run)});
    add(motionSteps(run));
    add({timingStep(document)});
    add(cubeSteps(run));
    add({{-1, [&project] { return writeFirstVolume(project); }, firstVolumeFileName(project)}});
    return steps;
}

bool runSteps(std::vector<SaveStep>& steps, ProgressReporter& progress) {
    std::vector<SaveStep> failed;
    for (SaveStep& step : steps) {
        if (step.progressBefore >= 0)
            progress.setProgress(step.progressBefore);
        if (!step.write())
            failed.push_back(step);
    }
    steps = std::move(failed);
    return steps.empty();
}

// In pieces: maps may be as large as what is left of the memory.
bool isReadable(const QString& name) {
    QByteArray piece(1 << 20, Qt::Uninitialized);
    QFile file(name);
    if (!openPlainFile(file))
        return false;
    qint64 total = 0;
    for (qint64 length = 1; length > 0; total += std::max<qint64>(length, 0)) {
        length = file.read(piece.data(), piece.size());
        if (length < 0)
            return false;
    }
    return total > 0;
}

// Whether the files are what was to be written. Samples and sizes are compared; a text or a map
// that was written whole must come back from the disk.
bool filesReadBack(const RunParts& run, const std::vector<SaveStep>& steps) {
    const QtCortivoDoc& document = run.document;
    const FMRProject& project = document.project;
    const int volumes = recordedVolumes(run.report, project);
    if (volumes == 0)
        return true; // nothing was measured
    QString text;
    FMRHeader header;
    if (!readTextFile(project.projectPath, text) ||
        parseFMR(text, FMRScope::Inspection, header) != FMRParseResult::Ok ||
        header.size() != project.size() || header.NrOfVolumes != volumes)
        return false;
    const bool othersReadable = std::ranges::all_of(
        steps, [&](const SaveStep& step) { return step.path.isEmpty() || isReadable(step.path); });
    return isReadable(document.protocol.protocolPath) && othersReadable &&
           stcDataReadBack(project, volumes, run.pump);
}

} // namespace

QString resultPath(const FMRProject& project, const QString& extension, const QString& unnamed) {
    const QString name = paths::fileName(project.projectPath);
    return paths::join(project.targetFolder,
                       name.isEmpty() ? unnamed : paths::withoutExtension(name) + extension);
}

QString regionFilePath(const FMRProject& project) {
    return resultPath(project, ".roi", "Selected.roi");
}

bool askToSaveAgain(const QString& folder) {
    return askQuestion(QStringLiteral("WARNING: The recorded data could not be saved completely in "
                                      "folder \"%1\".\n\nThe data are still in memory. Free space "
                                      "on the disk or make the folder writable.\n\nDo you want to "
                                      "try again?")
                           .arg(folder));
}

bool saveRecordedData(const RunParts& run) {
    const FMRProject& project = run.document.project;
    const std::unique_ptr<ProgressReporter> progress = run.display.openSavingProgress();
    const std::vector<SaveStep> steps = saveSteps(run, *progress);
    std::vector<SaveStep> left = steps;
    for (;;) {
        // The folder was there when the run began; it may have gone since.
        QDir().mkpath(project.targetFolder);
        if (runSteps(left, *progress)) {
            if (filesReadBack(run, steps))
                break;
            left = steps;
        }
        if (!askToSaveAgain(project.targetFolder))
            return false;
    }
    progress->setProgress(100);
    return true;
}
