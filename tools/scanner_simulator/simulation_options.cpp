// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation_options.h"

#include "mental_tasks.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr ScannerTypeName typeNames[] = {
    {ScannerType::SiemensMosaic, "SIEMENS_DICOM_MOSAIC", "SIEMENS_DICOM_MOSAIC",
     "001_000004_000001.dcm, a volume each"},
    {ScannerType::Dicom, "DICOM", "DICOM", "Run1-0001-0001.dcm, a slice each"},
    {ScannerType::SiemensIma, "SIEMENS_IMA", "SIEMENS_IMA", "513-3-17.ima, a slice each"},
    {ScannerType::SiemensImaMosaic, "SIEMENS_IMA_MOSAIC", "SIEMENS_IMA",
     "513-3-17.ima, a volume or a part of one each"},
    {ScannerType::SiemensPixelData, "SIEMENSPIXELDATA", "SIEMENSPIXELDATA",
     "017, samples of a mosaic"},
    {ScannerType::GeI, "GE_I", "GE_I", "004/I.001, a slice each"},
    {ScannerType::GeXDicom, "GE_X_DICOM", "GE_X_DICOM", "i5.MRDC.1, a slice each"},
    {ScannerType::GeHdxtDicom, "GE_HDXT_DICOM", "GE_HDXT_DICOM",
     "e1234/s4/i5.MRDC.1, a slice each"},
    {ScannerType::GeStanford, "GE_STANFORD", "GE_STANFORD",
     "P10001.V001.img, a volume each, with a header file"},
    {ScannerType::PhilipsRec, "PHILIPS_REC", "PHILIPS_REC", "Run1.rec, which grows"},
    {ScannerType::Bruker2dseq, "2DSEQ_MPI", "2DSEQ_MPI", "4/pdata/1/2dseq, which grows"},
    {ScannerType::PhilipsAnalyze, "PHILIPS_ANALYZE_DRIN", "PHILIPS_ANALYZE_DRIN",
     "Run1_00001.img, a volume each, with .hdr"},
    {ScannerType::AnalyzeNw, "ANALYZE_NW", "ANALYZE_NW",
     "run001_00001.img, a volume each, with .hdr"},
};

/// Capacity of a condition in a protocol.
constexpr int largestNrOfIntervals = 300;

bool isFileName(const QString& name) {
    return !name.isEmpty() && name.size() <= 100 && !name.contains('/') && !name.contains('\\') &&
           !name.contains('"') && !name.startsWith('.') && !name.contains(' ') &&
           !name.startsWith(';');
}

/// The folder marks allow for 99 series.
constexpr int highestMarkedRun = 99;

QString problemOfWatchFolder(const SimulationOptions& options) {
    const bool isHdxt = options.type == ScannerType::GeHdxtDicom;
    switch (options.watchFolder) {
    case WatchFolderForm::Plain:
        break;
    case WatchFolderForm::SeriesMark:
    case WatchFolderForm::NumberMark:
        if (isHdxt || options.type == ScannerType::Bruker2dseq)
            return "Files of this type have series folders of their own.";
        if (options.run > highestMarkedRun)
            return QString("A mark in the watch folder allows for runs up to %1 only.")
                .arg(highestMarkedRun);
        break;
    case WatchFolderForm::List:
        // The listed folders are searched for files of exactly the size of header and samples.
        if (options.type != ScannerType::SiemensIma &&
            options.type != ScannerType::SiemensImaMosaic)
            return "Only the types SIEMENS_IMA and SIEMENS_IMA_MOSAIC have lists of folders.";
        break;
    case WatchFolderForm::Exam:
        if (!isHdxt)
            return "Only the type GE_HDXT_DICOM has exam folders.";
        break;
    }
    return {};
}

/// Mosaics whose settings have one resolution for both directions.
QString problemOfMosaic(const SimulationOptions& options) {
    if (options.type != ScannerType::SiemensImaMosaic &&
        options.type != ScannerType::SiemensPixelData)
        return {};
    if (options.sizeX != options.sizeY)
        return "Mosaics of this type have square slices.";
    const int mostFiles = options.type == ScannerType::SiemensImaMosaic ? 2 : 1;
    const int slicesOfFile = options.mosaicTiles * options.mosaicTiles;
    if (options.mosaicTiles > 0 && options.nrOfSlices > mostFiles * slicesOfFile)
        return QString("%1 slices don't fit into %2 mosaics of %3 slices.")
            .arg(options.nrOfSlices)
            .arg(mostFiles)
            .arg(slicesOfFile);
    return {};
}

/// Options that the type doesn't have.
QString problemOfVariant(const SimulationOptions& options) {
    using enum ScannerType;
    struct Variant {
        const char* what;
        bool chosen;
        std::vector<ScannerType> types;
    };
    const Variant variants[] = {
        {"big-endian raw data",
         options.rawDataBigEndian,
         {SiemensIma, SiemensImaMosaic, SiemensPixelData, GeI, PhilipsAnalyze, AnalyzeNw}},
        {"a fixed study number", options.fixedStudyNumber, {SiemensIma, SiemensImaMosaic}},
        {"mosaics of a given size", options.mosaicTiles != 0, {SiemensImaMosaic, SiemensPixelData}},
        {"slices in any order", options.shuffledSlices, {GeHdxtDicom}},
        {"a choice of image transformations", options.imageTransformation != 2, {PhilipsAnalyze}},
        {"a choice of transfer syntaxes",
         options.syntax != TransferSyntax::ExplicitLittle,
         {SiemensMosaic, Dicom, GeXDicom, GeHdxtDicom}},
    };
    for (const Variant& variant : variants)
        if (variant.chosen && std::find(variant.types.begin(), variant.types.end(), options.type) ==
                                  variant.types.end())
            return QString("The type %1 doesn't have %2.")
                .arg(nameOf(options.type).word, variant.what);
    return {};
}

} // namespace

std::span<const ScannerTypeName> scannerTypeNames() {
    return typeNames;
}

const ScannerTypeName& nameOf(ScannerType type) {
    return typeNames[size_t(type)];
}

int seriesNumber(const SimulationOptions& options) {
    return 3 + options.run; // after the localizers
}

QString problemOf(const SimulationOptions& options) {
    struct Range {
        const char* what;
        double value;
        double smallest;
        double largest;
    };
    // The largest mosaic, 16 x 16 tiles of 256 x 256, still fits the 16-bit rows of an image file.
    const Range ranges[] = {
        {"matrix columns", double(options.sizeX), 8, 256},
        {"matrix rows", double(options.sizeY), 8, 256},
        {"number of slices", double(options.nrOfSlices), 1, 256},
        // Each letter, or trial, also gives Rest an interval, and there is one more of them.
        {"number of letters", double(options.spelledText.size()), 0, largestNrOfIntervals - 1},
        {"number of trials", double(options.trainingTrials), 0, 33},
        {"TR", double(options.repetitionTime), 10, 60000},
        {"number of volumes", double(options.nrOfVolumes), 1, 9999},
        {"number of volumes to skip", double(options.nrOfVolumesToSkip), 0,
         double(options.nrOfVolumes - 1)},
        {"field of view", double(options.fieldOfView), 32, 1000},
        {"slice distance", options.sliceDistance, 0, 100},
        {"block length", double(options.blockLength), 1, 10000},
        {"run number", double(options.run), 1, 999},
        {"noise", options.noise, 0, 1000},
        {"amplitude", options.amplitude, -1, 1},
        {"code", options.patternStrength, 0, 1},
        {"delay of the response", options.responseDelay, 0, 30},
        {"width of smoothing", double(options.smoothingWidth), 0, 100},
        {"number of mosaic tiles in a row", double(options.mosaicTiles), 0, 16},
        {"image transformation", double(options.imageTransformation), 0, 2},
    };
    for (const Range& range : ranges)
        if (!std::isfinite(range.value) || range.value < range.smallest ||
            range.value > range.largest)
            return QString("The %1 (%2) must lie between %3 and %4.")
                .arg(range.what)
                .arg(range.value)
                .arg(range.smallest)
                .arg(range.largest);
    // Every other block is baseline.
    const int analysed = options.nrOfVolumes - options.nrOfVolumesToSkip;
    if (!options.hasTasks() &&
        (analysed + options.blockLength - 1) / options.blockLength > 2 * largestNrOfIntervals)
        return QString("Blocks of %1 volumes give a condition more than %2 intervals.")
            .arg(options.blockLength)
            .arg(largestNrOfIntervals);
    if (!isFileName(options.name))
        return QString("The name \"%1\" can't be the beginning of file names.").arg(options.name);
    if (options.hasTasks())
        if (QString problem = problemOfTasks(options); !problem.isEmpty())
            return problem;
    if (QString problem = problemOfWatchFolder(options); !problem.isEmpty())
        return problem;
    if (QString problem = problemOfMosaic(options); !problem.isEmpty())
        return problem;
    return problemOfVariant(options);
}
