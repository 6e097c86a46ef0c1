// Files of volumes of interest, of maps over voxels, and of slice images.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_views.h"
#include "fuzz/fuzz_target.h"
#include "regions/region_time_courses.h"
#include "regions/voi_file.h"
#include "regions/voi_mapping.h"
#include "regions/vom_file.h"
#include "run/document/amr_file.h"

namespace {

// Volumes of interest, and their way to a run.
bool voi(std::span<const uint8_t> bytes) {
    VolumeOfInterest volumes;
    if (parseVOIs(textOf(bytes), volumes) != VOIParseResult::Ok)
        return false;
    const QByteArray written = voiText(volumes);
    VolumeOfInterest again;
    require(parseVOIs(textOf(written), again) == VOIParseResult::Ok, "written volumes read");
    require(voiText(again) == written && again.VOIVoxels == volumes.VOIVoxels,
            "written volumes stay as they are");
    VOIMapping mapping;
    mapping.functional = {16, 12, 5};
    MappedVOIs mapped;
    require(mapVOIsToFunctional(volumes, mapping, mapped), "there is memory");
    require(int(mapped.volumes.size()) == volumes.NrOfVOIs(), "no volume is lost");
    for (const MappedVOI& volume : mapped.volumes)
        for (size_t i = 0; i < volume.voxels.size(); ++i)
            require(isInside(mapping.functional, volume.voxels.x[i], volume.voxels.y[i],
                             volume.voxels.z[i]),
                    "voxels inside");
    return true;
}

// Maps over voxels.
bool vom(std::span<const uint8_t> bytes) {
    VomHeader header;
    std::vector<VoxelMap> maps;
    QString fault;
    const bool good = parseVom(textOf(bytes), header, maps, fault);
    require(good == fault.isEmpty(), "a fault is named");
    if (!good)
        return false;
    const QByteArray written = vomFileText(header, maps);
    require(parseVom(textOf(written), header, maps, fault) && vomFileText(header, maps) == written,
            "written maps stay as they are");
    return true;
}

// Slice images.
bool amr(std::span<const uint8_t> bytes) {
    constexpr int nrOfSlices = 2;
    AmrFile file;
    int nrOfImages = 0;
    const AmrParseResult result = parseAMR(bytes, nrOfSlices, file, nrOfImages);
    if (result != AmrParseResult::Ok && result != AmrParseResult::MoreImages) {
        require(file.images.empty(), "bad images are not kept");
        return false;
    }
    require(file.images.size() == size_t(nrOfSlices), "an image for each slice");
    const QByteArray written = amrBytes(file.images, GreyScale(), file.overlayColors);
    AmrFile again;
    require(parseAMR(bytesOf(written), nrOfSlices, again, nrOfImages) == AmrParseResult::Ok,
            "written images read");
    require(amrBytes(again.images, GreyScale(), again.overlayColors) == written,
            "written images stay as they are");
    return true;
}

} // namespace

std::vector<FuzzTarget> sliceSpaceTargets() {
    return {{"voi", voi}, {"vom", vom}, {"amr", amr}};
}
