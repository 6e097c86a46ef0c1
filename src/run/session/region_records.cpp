// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/region_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"

namespace {

/// What a record says beside the regions themselves.
struct RecordedChoices {
    OperatorRequests requests;
    std::vector<std::vector<int>> rankings;
};

/// Reads up to the text of the regions. The choices hold those of the session before.
void decode(ByteReader& reader, RecordedChoices& choices) {
    OperatorRequests& requests = choices.requests;
    RegionOptions& options = requests.regions;
    for (bool* flag :
         {&requests.saveRTPs, &requests.saveROITimeCourses, &requests.saveROIBetaTimeCourses,
          &options.SelectOnlyMapVoxels, &options.BestVoxelSelection})
        *flag = reader.u8() != 0;
    reader.u8(); // whether there was a feedback display, which has a record of its own
    options.TopVoxelRatio = reader.f32();
    options.TopVoxelSelectionMode = reader.i32();
    for (uint32_t regions = reader.u32(); regions > 0 && !reader.failed(); --regions) {
        std::vector<int>& ranking = choices.rankings.emplace_back();
        for (uint32_t count = reader.u32(); count > 0 && !reader.failed(); --count)
            ranking.push_back(reader.i32());
    }
}

/// The rankings belong to regions with as many voxels.
void placeRankings(SavedRegions& saved, const std::vector<std::vector<int>>& rankings) {
    for (size_t i = 0; i < std::min(saved.regions.size(), rankings.size()); ++i) {
        SavedRegion& region = saved.regions[i];
        const size_t voxels = region.voxels ? region.voxels->size() : 0;
        const bool fits = rankings[i].size() == voxels &&
                          std::ranges::all_of(rankings[i], [voxels](int position) {
                              return position >= 0 && size_t(position) < voxels;
                          });
        region.SortedVoxelList = fits ? rankings[i] : std::vector<int>();
    }
}

} // namespace

QByteArray regionRecord(const OperatorRequests& requests, const Regions& regions) {
    ByteWriter writer;
    const RegionOptions& options = requests.regions;
    for (const bool flag : {requests.saveRTPs, requests.saveROITimeCourses,
                            requests.saveROIBetaTimeCourses, options.SelectOnlyMapVoxels,
                            options.BestVoxelSelection, options.feedbackMaxima.has_value()})
        writer.u8(flag);
    writer.f32(options.TopVoxelRatio);
    writer.i32(options.TopVoxelSelectionMode);
    writer.u32(uint32_t(regions.count()));
    for (int i = 0; i < regions.count(); ++i) {
        writer.u32(uint32_t(regions[i].SortedVoxelList.size()));
        for (const int position : regions[i].SortedVoxelList)
            writer.i32(position);
    }
    return byteArray(writer.result()) + roiFileText(regions, options);
}

bool parseRegionRecord(const QByteArray& content, const VolumeSize& size,
                       OperatorRequests& requests, SavedRegions& regions) {
    RecordedChoices choices{requests, {}};
    ByteReader reader(bytesOf(content));
    decode(reader, choices);
    SavedRegions saved;
    if (reader.failed() ||
        parseROIFile(QString::fromUtf8(content.mid(qsizetype(reader.position()))), size, saved) !=
            RoiFileResult::Ok)
        return false;
    placeRankings(saved, choices.rankings);
    requests = choices.requests;
    regions = std::move(saved);
    return true;
}
