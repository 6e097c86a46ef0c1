// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_vois.h"

#include "base/text_reading.h"
#include "regions/voi_file.h"
#include "regions/voi_mapping.h"
#include "run/session/region_records.h"
#include "run/session/run_session.h"
#include "volume/anatomy/vmr_volume.h"

namespace {

constexpr char fileFilter[] = "Volume of interest files (*.voi)";

QString spaceName(CubeSpace space) {
    if (space == CubeSpace::Talairach)
        return "TAL";
    return space == CubeSpace::ACPC ? "ACPC" : "CV";
}

/// The same for the text of a file, which may come from other programs.
QString spaceName(const QString& text) {
    const QString upper = text.toUpper();
    return upper == "TAL" || upper == "ACPC" ? upper : QString("CV");
}

/// Why the volumes can't be mapped through this cube; empty when they can. Files of older versions
/// don't state their space.
QString mappingFault(const VolumeOfInterest& volumes, const AnatomicalCube& cube) {
    if (!cube.mapping)
        return QStringLiteral("The volumes of interest can not be mapped: the run has no anatomy "
                              "with a known place over its slices.");
    const QString space = spaceName(cube.spaces.cube);
    if (!volumes.ReferenceSpace.isEmpty() && spaceName(volumes.ReferenceSpace) != space)
        return QStringLiteral("The volumes of interest can not be mapped: they are in the space "
                              "\"%1\", and the anatomy of the run is in \"%2\".")
            .arg(volumes.ReferenceSpace, space);
    if (volumes.OriginalVMRFramingCubeDim != cubeSide)
        return QStringLiteral("The volumes of interest can not be mapped: they are in a cube of %1 "
                              "voxels, and the anatomy of the run has %2.")
            .arg(volumes.OriginalVMRFramingCubeDim)
            .arg(cubeSide);
    return {};
}

// Each kind once: a file can have thousands of them.
void tellWhatIsOutside(const VolumeOfInterest& volumes, const MappedVOIs& mapped) {
    if (mapped.voxelsOutOfRange > 0)
        showModelessWarning(QStringLiteral("VOXEL OUT OF RANGE\n\n%1 voxels of the volumes of "
                                           "interest are outside the anatomy.")
                                .arg(mapped.voxelsOutOfRange));
    QStringList names;
    for (size_t i = 0; i < mapped.volumes.size(); ++i)
        if (mapped.volumes[i].sliceOutOfBounds)
            names << shortened(volumes.NameOfVOI[i]);
    constexpr qsizetype mostNames = 20;
    if (names.isEmpty())
        return;
    const qsizetype more = names.size() - mostNames;
    showModelessWarning(
        QStringLiteral("SLICE OUT OF BOUNDS\n\n%1 volumes of interest have no voxel in the slices "
                       "of the run and make no region: %2.")
            .arg(names.size())
            .arg(names.first(std::min(mostNames, names.size())).join(", ") +
                 (more > 0 ? QStringLiteral(" and %1 more").arg(more) : QString())));
}

VoxelRectangle boundsOf(const MappedVOI& volume) {
    return {volume.slice, volume.minX, volume.maxX + 1, volume.minY, volume.maxY + 1};
}

void addVolume(VolumeOfInterest& to, const VolumeOfInterest& from, size_t number) {
    const auto first = from.VOIVoxels.begin() + from.VOIStart[number];
    to.add(from.NameOfVOI[number], from.ColorOfVOI[number],
           std::vector<VOIVoxel>(first, first + from.VOICount[number]));
}

VolumeOfInterest headerOf(const VolumeOfInterest& volumes) {
    VolumeOfInterest header = volumes;
    header.NameOfVOI.clear();
    header.ColorOfVOI.clear();
    header.VOIStart.clear();
    header.VOICount.clear();
    header.VOIVoxels.clear();
    return header;
}

} // namespace

SessionVOIs::SessionVOIs(RunSession& session) : session_(session) {
    // Behind the regions, which load their file first.
    session_.listeners.add(*this, ListenerPlace::Regions);
}

bool SessionVOIs::preLoad(const QString& path) {
    if (!readVOIFile(path, preLoaded_))
        return false;
    session_.requests.preLoadVOI = true;
    return true;
}

void SessionVOIs::chooseFileToLoad() {
    if (!session_.regions.mayChange())
        return;
    chooseFileToOpen(
        "Open VOI File", session_.settings.settingsFileDir, fileFilter,
        [this](const QString& path) { static_cast<void>(load(path)); }, &chooser_);
}

bool SessionVOIs::load(const QString& path) {
    VolumeOfInterest volumes;
    return session_.regions.mayChange() && readVOIFile(path, volumes) &&
           mapToRegions(volumes, RegionPlacing::Replace);
}

bool SessionVOIs::mapToRegions(const VolumeOfInterest& volumes, RegionPlacing placing) {
    const AnatomicalCube& cube = session_.anatomicalDocument->anatomy.anatomical;
    const QString fault = mappingFault(volumes, cube);
    if (!fault.isEmpty()) {
        showModelessWarning("WARNING: " + fault);
        return false;
    }
    const VOIMapping mapping{*cube.mapping, cube.mapping->talairach,
                             session_.functionalDocument->project.size()};
    MappedVOIs mapped;
    if (!mapVOIsToFunctional(volumes, mapping, mapped)) {
        showModelessWarning("ERROR: Insufficient memory!");
        return false;
    }
    SavedRegions regions;
    VolumeOfInterest inRun = headerOf(volumes);
    for (size_t i = 0; i < mapped.volumes.size(); ++i) {
        if (mapped.volumes[i].voxels.size() == 0)
            continue;
        SavedRegion& region = regions.regions.emplace_back();
        region.rectangle = boundsOf(mapped.volumes[i]);
        region.voxels = std::move(mapped.volumes[i].voxels);
        addVolume(inRun, volumes, i);
    }
    tellWhatIsOutside(volumes, mapped);
    if (regions.regions.empty() || !session_.regions.take(regions, placing))
        return false;
    shown_ = std::move(inRun);
    return true;
}

void SessionVOIs::chooseFileToSave() {
    if (shown_.NrOfVOIs() == 0) {
        showModelessInformation("INFO: The regions of the run are not volumes of interest. Load a "
                                "file of these first.");
        return;
    }
    ::chooseFileToSave(
        "Save VOI File", session_.settings.settingsFileDir, fileFilter,
        [this](const QString& path) { static_cast<void>(save(path)); }, &chooser_);
}

bool SessionVOIs::save(const QString& path) const {
    if (shown_.NrOfVOIs() == 0)
        return false;
    VolumeOfInterest saved = shown_;
    saved.ReferenceSpace = spaceName(session_.anatomicalDocument->anatomy.anatomical.spaces.cube);
    return writeVOIFile(path, saved);
}

void SessionVOIs::documentsLeaving() {
    shown_ = {};
    chooser_.close();
}

void SessionVOIs::documentsArrived(QtCortivoDoc&) {
    played_ = false;
}

// From another file. Those of volumes are noted behind it.
void SessionVOIs::regionsLoaded(QtCortivoDoc&) {
    shown_ = {};
}

void SessionVOIs::regionsChanged(QtCortivoDoc& functional) {
    if (functional.regions.empty())
        shown_ = {};
}

bool SessionVOIs::atStep(VolumeStep step, const VolumeAtHand& hand) {
    // A run that is recovered has regions of its own.
    if (step == VolumeStep::LoadRegions && hand.volume == 0 && session_.requests.preLoadVOI &&
        !played_ && mapToRegions(preLoaded_, RegionPlacing::Add))
        session_.anatomy.show(ShownCube::Anatomical);
    return true;
}

void SessionVOIs::recordPlayed(const RunRecord& record) {
    played_ = played_ || record.name == regionsRecord;
}
