// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_anatomy.h"

#include "base/messages.h"
#include "base/paths.h"
#include "run/loop/run_anatomy.h"
#include "run/session/run_session.h"
#include "run/session/settings_file_names.h"

#include <algorithm>
#include <utility>

namespace {

/// Names the series that a settings file belongs to; one without a number is its own.
QString seriesOf(const QString& settingsFile) {
    const QString first = recordingName(paths::fileName(settingsFile), 1);
    return first.isEmpty() ? settingsFile
                           : paths::join(paths::folderWithSlash(settingsFile), first);
}

} // namespace

SessionAnatomy::SessionAnatomy(RunSession& session, RunDisplay& display)
    : session_(session), display_(display) {
    session_.listeners.add(*this, ListenerPlace::Views);
}

Anatomy* SessionAnatomy::anatomy() const {
    return session_.anatomicalDocument ? &session_.anatomicalDocument->anatomy : nullptr;
}

bool SessionAnatomy::hasAnatomy() const {
    return anatomy() && !anatomy()->anatomical.empty();
}

bool SessionAnatomy::hasFunctionalCube() const {
    return anatomy() && !anatomy()->functional.empty();
}

const QString& SessionAnatomy::loadedFile() const {
    static const QString none;
    return loadedSeries_ == seriesOf(session_.settings.settingsFilePath) ? loaded_ : none;
}

bool SessionAnatomy::load(const QString& path) {
    if (!session_.phase.isIdle()) {
        showModelessInformation("This has to wait until the run has ended and is saved.");
        return false;
    }
    VMRVolume volume;
    if (!readAnatomyFile(path, volume))
        return false;
    loaded_ = path;
    loadedSeries_ = seriesOf(session_.settings.settingsFilePath);
    if (hasFunctionalCube())
        place(std::move(volume), path);
    else
        showModelessInformation(
            QStringLiteral("INFO: The anatomy \"%1\" will be shown with the next run.")
                .arg(paths::fileName(path)));
    return true;
}

// Over the run in memory.
void SessionAnatomy::place(VMRVolume volume, const QString& path) {
    Anatomy& shown = *anatomy();
    placeLoadedAnatomy(shown, std::move(volume), path);
    const AnatomyRun run{shown, *session_.functionalDocument, session_.settings, session_.requests};
    if (!mapRunIntoAnatomy(run))
        showModelessInformation(
            QStringLiteral("INFO: The place of the anatomy \"%1\" over the slices of the run is "
                           "not known, so it is shown without maps.")
                .arg(shown.anatomical.name));
    shown.cross[size_t(ShownCube::Anatomical)] = CubeVoxel();
    // The cross stays on the voxel of the run that it marks, where its place is known.
    shown.shown = ShownCube::Functional;
    moveOtherCross(shown);
    setShown(ShownCube::Anatomical);
    tellVoxel(shown);
}

bool SessionAnatomy::show(ShownCube cube) {
    if (cube == ShownCube::Anatomical ? !hasAnatomy() : !hasFunctionalCube())
        return false;
    setShown(cube);
    tellVoxel(*anatomy());
    return true;
}

void SessionAnatomy::setShown(ShownCube cube) {
    anatomy()->shown = chosen_ = cube;
    session_.requests.pendingOverlayVMR =
        cube == ShownCube::Anatomical ? 1 : (hasAnatomy() ? 0 : -1);
    display_.refreshViewButtons();
    tellChanged();
}

void SessionAnatomy::moveCross(const CubeVoxel& voxel) {
    if (!anatomy())
        return;
    Anatomy& cubes = *anatomy();
    cubes.cross[size_t(cubes.shown)] =
        nearestCubeVoxel({float(voxel.x), float(voxel.y), float(voxel.z)});
    moveOtherCross(cubes);
    tellChanged();
    tellVoxel(cubes);
}

void SessionAnatomy::moveOtherCross(Anatomy& anatomy) const {
    const bool functional = anatomy.shown == ShownCube::Functional;
    const AnatomicalCube& other = functional ? anatomy.anatomical : anatomy.functional;
    const CubeVoxel& cross = anatomy.cross[size_t(anatomy.shown)];
    const auto place =
        anatomy.shownCube().functionalPlace({float(cross.x), float(cross.y), float(cross.z)});
    const auto there = place ? other.cubePlace(*place) : std::nullopt;
    if (there)
        anatomy.cross[functional ? 1 : 0] = nearestCubeVoxel(*there);
}

void SessionAnatomy::functionalVoxelClicked(int x, int y, int slice) {
    if (!anatomy())
        return;
    Anatomy& cubes = *anatomy();
    const C3dVector voxel{float(x), float(y), float(slice)};
    for (const ShownCube which : {ShownCube::Functional, ShownCube::Anatomical}) {
        const AnatomicalCube& cube =
            which == ShownCube::Functional ? cubes.functional : cubes.anatomical;
        if (const auto there = cube.cubePlace(voxel))
            cubes.cross[size_t(which)] = nearestCubeVoxel(*there);
    }
    tellChanged();
    if (voxelMarked)
        voxelMarked(x, y, slice);
}

void SessionAnatomy::changeWindow(int low, int high) {
    constexpr int largest = 255;
    if (!anatomy())
        return;
    anatomy()->windowLow = std::clamp(low, 0, largest - 1);
    anatomy()->windowHigh = std::clamp(high, anatomy()->windowLow + 1, largest);
    tellChanged();
}

void SessionAnatomy::tellChanged() const {
    if (changed)
        changed();
}

void SessionAnatomy::tellVoxel(const Anatomy& anatomy) const {
    if (!voxelMarked)
        return;
    const CubeVoxel& cross = anatomy.cross[size_t(anatomy.shown)];
    const auto place =
        anatomy.shownCube().functionalPlace({float(cross.x), float(cross.y), float(cross.z)});
    const VolumeSize size = session_.functionalDocument->project.size();
    const auto inside = [](int voxel, int voxels) { return voxel >= 0 && voxel < voxels; };
    const int x = place ? nearestVoxel(place->x) : -1;
    const int y = place ? nearestVoxel(place->y) : -1;
    const int slice = place ? nearestVoxel(place->z) : -1;
    if (inside(x, size.x) && inside(y, size.y) && inside(slice, size.slices))
        voxelMarked(x, y, slice);
    else
        voxelMarked(-1, -1, -1);
}

void SessionAnatomy::documentsLeaving() {
    if (!anatomy())
        return;
    cross_ = anatomy()->cross;
    windowLow_ = anatomy()->windowLow;
    windowHigh_ = anatomy()->windowHigh;
}

void SessionAnatomy::documentsArrived(QtCortivoDoc&) {
    session_.requests.loadedAnatomy = loadedFile();
    if (!anatomy())
        return;
    anatomy()->cross = cross_;
    anatomy()->windowLow = windowLow_;
    anatomy()->windowHigh = windowHigh_;
}

// What was shown of the run before is shown of this one, where it has that.
void SessionAnatomy::runPrepared(QtCortivoDoc&) {
    if (!anatomy())
        return;
    const ShownCube wanted = chosen_;
    setShown(wanted == ShownCube::Anatomical && hasAnatomy() ? wanted : ShownCube::Functional);
    chosen_ = wanted;
    // The slices may lie elsewhere than those of the run before.
    moveOtherCross(*anatomy());
}
