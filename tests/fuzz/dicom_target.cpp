// Everything that looks into a DICOM file before its samples are taken.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/dicom_header.h"
#include "intake/dicom_refusal.h"
#include "intake/pixel_data.h"
#include "intake/slice_geometry.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
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
    static_cast<void>(refusalOf(bytes, "fuzz.dcm"));
    for (const PixelKeySearch search : {PixelKeySearch::First, PixelKeySearch::Last}) {
        std::vector<uint8_t> copy(bytes.begin(), bytes.end());
        if (const auto found = findPixelData(copy, search))
            swapSamples(pixelBytes(copy, *found));
    }
    return good;
}

const bool added = addFuzzTarget({"dicom", run});

} // namespace
