// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/session_region.h"

#include "dialogs/appearance.h"
#include "regions/region_time_courses.h"
#include "run/document/region_colors.h"

namespace {

/// Mixed with white where it would be hard to see on the dark ground, as a pure blue is.
QColor readable(const QColor& color) {
    constexpr double leastBrightness = 110.0;
    const double brightness = qGray(color.rgb());
    if (brightness >= leastBrightness)
        return color;
    const double share = (leastBrightness - brightness) / (255.0 - brightness);
    const auto mixed = [share](int channel) { return int(channel + share * (255 - channel)); };
    return {mixed(color.red()), mixed(color.green()), mixed(color.blue())};
}

} // namespace

int nrOfRegions(const RunSession& session) {
    return session.functionalDocument ? session.functionalDocument->regions.count() : 0;
}

std::optional<PlottedRegion> regionOfSession(const RunSession& session, int number) {
    if (number < 0 || number >= nrOfRegions(session))
        return {};
    const RegionOfInterest& region = session.functionalDocument->regions[number];
    int last = region.CurrentTimePoint;
    if (session.report.interruptedAtVolume >= 0)
        last = std::min(last, session.report.interruptedAtVolume);
    const size_t used = voxelsInUse(region, session.requests.regions.BestVoxelSelection).size();
    return PlottedRegion{region, number,
                         readable(toQColor(regionColor(session.regionColors, number))), last,
                         used == 0 ? region.NrOfVoxels() : int(used)};
}

PlottedTiming timingOfRegion(const RunSession& session, int number) {
    if (const PlottedRun* run = session.multiRun.runOfRegion(number))
        return {run->study.protocol, run->study.TR};
    const QtCortivoDoc& document = *session.functionalDocument;
    return {document.protocol, document.project.TR};
}
