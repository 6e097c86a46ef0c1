// Headers of image files of every kind.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/analyze_header.h"
#include "intake/dicom_header.h"
#include "intake/dicom_refusal.h"
#include "intake/ge_headers.h"
#include "intake/pixel_data.h"
#include "intake/siemens_ima_header.h"
#include "intake/siemens_private_header.h"
#include "intake/slice_geometry.h"

#include <cmath>

namespace {

FMRProject withSizes(const HeaderSizes& sizes) {
    FMRProject project;
    takeHeaderSizes(sizes, "fuzz", project);
    require(project.sliceDistance() >= 0.0f && project.position.fovRows <= largestLength,
            "sizes are possible ones");
    require(std::isfinite(project.sliceThickness) && std::isfinite(project.sliceGap) &&
                std::isfinite(project.pixelSizeX) && std::isfinite(project.pixelSizeY),
            "sizes are numbers");
    return project;
}

// All that is read from a DICOM file before its samples.
bool dicom(std::span<const uint8_t> bytes) {
    DicomHeader header;
    FMRProject project;
    ByteOrder order = ByteOrder::Little;
    const bool good = parseDicomHeader(bytes, "fuzz.dcm", header, order);
    static_cast<void>(
        parseImagePosition(header.imagePositionText, SliceEnd::First, project.position));
    static_cast<void>(parseImageOrientation(header.imageOrientationText, project.position));
    static_cast<void>(computeMosaicGeometry(header, project));
    DicomIdentifiers identifiers;
    require(!parseDicomIdentifiers(bytes, "fuzz.dcm", identifiers) || identifiers.complete(),
            "identifiers are complete");
    static_cast<void>(unsupportedReason(bytes, "fuzz.dcm"));
    for (const PixelKeySearch search : {PixelKeySearch::First, PixelKeySearch::Last}) {
        std::vector<uint8_t> copy(bytes.begin(), bytes.end());
        if (const auto found = findPixelData(copy, search))
            swapSamples(pixelBytes(copy, *found));
    }
    return good;
}

// The scanner's text block inside a Siemens file.
bool siemensProtocol(std::span<const uint8_t> bytes) {
    bool good = false;
    for (const int nrOfSlices : {0, 7, 16}) {
        FMRProject project;
        project.NrOfSlices = nrOfSlices;
        good = parseSiemensProtocol(bytes, project);
    }
    return good;
}

// Binary headers of Siemens ".ima" files.
bool siemensImaHeader(std::span<const uint8_t> bytes) {
    bool good = false;
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        const FMRProject project = withSizes(parseSiemensIMAHeader(bytes, order, {64, 64}));
        good = good || project.sliceThickness > 0.0f;
    }
    return good;
}

// Headers of ANALYZE images.
bool analyzeHeader(std::span<const uint8_t> bytes) {
    ByteOrder order = ByteOrder::Little;
    AnalyzeHeader header;
    const bool good = parseAnalyzeHeader(bytes, order, header);
    require(good == (bytes.size() >= size_t(analyzeHeaderBytes)), "whole headers are read");
    return good;
}

// Headers of GE I files.
bool geIHeader(std::span<const uint8_t> bytes) {
    const std::optional<HeaderSizes> sizes = parseGEIHeader(bytes);
    if (sizes)
        static_cast<void>(withSizes(*sizes));
    return sizes.has_value();
}

// Headers of GE P files.
bool gePHeader(std::span<const uint8_t> bytes) {
    return withSizes(parsePFileHeader(textOf(bytes))).position.fovRows > 0.0f;
}

} // namespace

std::vector<FuzzTarget> imageHeaderTargets() {
    return {{"dicom", dicom},
            {"siemens_protocol", siemensProtocol},
            {"siemens_ima_header", siemensImaHeader},
            {"analyze_header", analyzeHeader},
            {"ge_i_header", geIHeader},
            {"ge_p_header", gePHeader}};
}
