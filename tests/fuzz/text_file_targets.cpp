// Text files that a run reads: settings, protocols, project headers, contrasts and regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "regions/region_selection.h"
#include "regions/region_time_courses.h"
#include "regions/roi_file.h"
#include "run/protocol/prt_file.h"
#include "run/protocol/real_time_protocol.h"
#include "run/protocol/tdat_protocol.h"
#include "run/protocol/volume_tables.h"
#include "run/settings/settings_file.h"
#include "run/settings/settings_reader.h"
#include "run/settings/watch_folders.h"
#include "stats/contrast_file.h"
#include "volume/fmr_file.h"

namespace {

bool readSettings(RunSettings& settings, SettingsUse use, const QString& text) {
    settings.settingsFilePath = "fuzz/fuzz.vco";
    settings.settingsFileDir = "fuzz/";
    const SettingsReport report(settings.settingsFilePath, use, [] {});
    return SettingsReader(settings, report, text).read();
}

// Settings files, and the lists of watch folders that they name. Inspection only: a run would
// create the folders in the text, wherever they are.
bool settingsFile(std::span<const uint8_t> bytes) {
    const QString text = textOf(bytes);
    static_cast<void>(parseWatchFolderList(text, "fuzz/"));
    RunSettings settings;
    // A multi-run project is written without all its entries, so it can't be read back.
    if (!readSettings(settings, SettingsUse::Inspection, text) || settings.MergeType)
        return false;
    const WrittenSettings written = settingsText(settings);
    RunSettings again;
    require(readSettings(again, SettingsUse::Inspection, written.text), "written settings read");
    require(settingsText(again).text == written.text, "written settings stay as they are");
    return true;
}

// Protocol files.
bool prt(std::span<const uint8_t> bytes) {
    const QString text = textOf(bytes);
    bool good = false;
    for (const bool withResponses : {false, true}) {
        StimulationProtocol protocol;
        if (parsePRT(text, withResponses, protocol).result != PRTResult::Good)
            continue;
        good = true;
        VolumeTables tables;
        buildVolumeTables(tables, protocol, 50, 2000.0f);
        StimulationProtocol again;
        require(parsePRT(textOf(prtText(protocol)), withResponses, again).result == PRTResult::Good,
                "a written protocol reads");
        require(again.nrOfConditions() == protocol.nrOfConditions(), "no condition is lost");
    }
    return good;
}

// Protocols that arrive: the header, then the lines one by one.
template<typename State, typename Parse, typename Apply>
bool arriving(std::span<const uint8_t> bytes, Parse parse, Apply apply) {
    const QString text = decodedText(QByteArrayView(bytes).toByteArray());
    StimulationProtocol protocol;
    State state;
    const HeaderParsing header = parse(text, protocol, state);
    require(header.length >= 0 && header.length <= text.size(), "a header lies inside its text");
    if (!header.good)
        return false;
    for (const QString& line : text.mid(header.length).split('\n'))
        static_cast<void>(apply(line, protocol, state));
    for (const ProtocolContrasts::Contrast& contrast : state.contrasts.table)
        require(contrast.weights.size() <= protocol.conditions.size(), "a weight each at most");
    VolumeTables tables;
    buildVolumeTables(tables, protocol, 50, 2000.0f);
    return true;
}

bool rtp(std::span<const uint8_t> bytes) {
    return arriving<RealTimeProtocolState>(
        bytes, parseRTPHeader, [](const QString& line, auto& protocol, auto& state) {
            return applyRTPLine(line, {50, 2000.0f}, protocol, state);
        });
}

bool tdat(std::span<const uint8_t> bytes) {
    TDATSettings settings;
    const auto parse = [&](const QString& text, auto& protocol, auto& state) {
        return parseTDATHeader(text, protocol, state, settings);
    };
    return arriving<TDATState>(bytes, parse, applyTDATLine);
}

// Headers of functional projects.
bool fmr(std::span<const uint8_t> bytes) {
    const QString text = textOf(bytes);
    bool good = false;
    for (const FMRScope scope : {FMRScope::Inspection, FMRScope::Project}) {
        FMRHeader header;
        if (parseFMR(text, scope, header) != FMRParseResult::Ok)
            continue;
        good = true;
        FMRHeader again;
        require(parseFMR(textOf(fmrText(header, header.NrOfVolumes)), scope, again) ==
                    FMRParseResult::Ok,
                "a written header reads");
        require(again.NrOfVolumes == header.NrOfVolumes && again.NrOfSlices == header.NrOfSlices &&
                    again.ResolutionX == header.ResolutionX &&
                    again.ResolutionY == header.ResolutionY,
                "written sizes stay");
    }
    return good;
}

// Contrast files.
bool ctr(std::span<const uint8_t> bytes) {
    constexpr int nrOfConditions = 3;
    DesignMatrix design;
    design.NrOfContrastPredictors = nrOfConditions;
    design.NrOfConditionPredictors = nrOfConditions - 1;
    design.NrOfPredictors = nrOfConditions + 1;
    ContrastDefinitions contrasts;
    QString message;
    if (!parseContrasts(textOf(bytes), contrasts, design, nrOfConditions, message))
        return false;
    const QByteArray written = contrastFileText(contrasts, nrOfConditions);
    ContrastDefinitions again;
    require(parseContrasts(textOf(written), again, design, nrOfConditions, message),
            "a written contrast file reads");
    require(again.ContrastValues == contrasts.ContrastValues, "no weight changes");
    return true;
}

/// The region as a run makes it from its file.
void createSavedRegion(Regions& regions, const FMRProject& project, const SavedRegion& saved) {
    StatisticalMaps none;
    const VoxelList voxels = saved.voxels ? *saved.voxels
                                          : selectROIVoxels({.size = project.size(), .maps = none},
                                                            false, 2, saved.rectangle);
    for (size_t i = 0; i < voxels.size(); ++i)
        require(isInside(project.size(), voxels.x[i], voxels.y[i], voxels.z[i]), "voxels inside");
    if (voxels.size() == 0)
        return;
    RegionOptions options{.BestVoxelSelection = true};
    options.TopVoxelRatio = saved.TopVoxelRatio.value_or(options.TopVoxelRatio);
    RegionOfInterest& region = createROIFromVoxels(regions, project, project.NrOfVolumes, voxels,
                                                   saved.rectangle, options);
    region.SortedVoxelList = saved.SortedVoxelList;
    std::vector<int> positions = saved.SortedVoxelList;
    std::ranges::sort(positions);
    for (size_t i = 0; i < positions.size(); ++i)
        require(positions.size() == voxels.size() && positions[i] == int(i), "each position once");
    updateTimeCourse(region, project, project.NrOfVolumes, true);
}

// Files of regions.
bool roi(std::span<const uint8_t> bytes) {
    FMRProject project;
    project.ResolutionX = 16;
    project.ResolutionY = 12;
    project.NrOfSlices = 5;
    project.NrOfVolumes = 3;
    require(project.allocateVolumes(), "there is memory");
    SavedRegions saved;
    if (parseROIFile(textOf(bytes), project.size(), saved) != RoiFileResult::Ok)
        return false;
    Regions regions;
    for (const SavedRegion& region : saved.regions)
        createSavedRegion(regions, project, region);
    SavedRegions again;
    const QByteArray written =
        roiFileText(regions, {.BestVoxelSelection = true, .feedbackMaxima = defaultMaxPSC});
    require(parseROIFile(textOf(written), project.size(), again) == RoiFileResult::Ok,
            "a written file reads");
    require(int(again.regions.size()) == regions.count(), "no region is lost");
    for (int i = 0; i < regions.count(); ++i)
        require(again.regions[size_t(i)].voxels == regions[i].voxels, "no voxel changes");
    return true;
}

} // namespace

std::vector<FuzzTarget> textFileTargets() {
    return {{"settings", settingsFile},
            {"prt", prt},
            {"rtp", rtp},
            {"tdat", tdat},
            {"fmr", fmr},
            {"ctr", ctr},
            {"roi", roi}};
}
