// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_readers.h"

#include "base/program_end.h"
#include "intake/dicom_names.h"
#include "intake/image_transformation.h"
#include "intake/siemens_ima_header.h"
#include "intake/siemens_ima_names.h"

// The study number rises with each volume even with SiemensFixedRunNumber, which for single-slice
// files only leaves out the skipped volumes.
QString SiemensImaSliceReader::fileName(Stage stage, int volume, int slice) const {
    const RunSettings& run = settings();
    if (stage == Stage::FirstVolume)
        return imaFileName(run, run.SiemensFirstStudyNr, qint64(run.SiemensFirstImageNr) + slice);
    return imaFileName(run, fileStudyNr(run) + volume,
                       fileImageNr(run, project()) + qint64(project().NrOfSlices) * volume + slice);
}

bool SiemensImaSliceReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0);
}

bool SiemensImaSliceReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume);
}

bool SiemensImaSliceReader::readSlices(Stage stage, int volume) {
    const qint64 sliceBytes = qint64(targetSlice(stage, volume, 0).size_bytes());
    if (sliceBytes == 0)
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice) {
        const auto following = [&](int step) {
            const int next = slice + 1 + step;
            return next < project().NrOfSlices
                       ? QStringList{watchedPath(fileName(stage, volume, next))}
                       : QStringList();
        };
        const auto image = awaitHeadedFile({.name = fileName(stage, volume, slice),
                                            .firstOfRun = stage == Stage::FirstVolume && slice == 0,
                                            .headerBytes = imaHeaderBytes,
                                            .sampleBytes = sliceBytes,
                                            .following = following});
        if (!image || !store(image->samples, targetSlice(stage, volume, slice)))
            return false;
    }
    return true;
}

bool SiemensImaSliceReader::readHeaders() {
    readSiemensIMAHeader(watchedPath(firstImaFileName(settings())), state().rawDataByteOrder,
                         project());
    return true;
}

bool SquareTiledImageReader::readFirstVolume() {
    return readFiles(Stage::FirstVolume, 0);
}

bool SquareTiledImageReader::readVolume(int volume) {
    return readFiles(Stage::Loop, volume);
}

// Tiles that don't fit into the first file are in a second one, numbered after the first files of
// all volumes.
QString SquareTiledImageReader::fileName(Stage stage, int volume, int file) const {
    const RunSettings& run = settings();
    const qint64 behind = file == 0 ? 0 : run.NrOfVolumes;
    if (stage == Stage::FirstVolume)
        return nameOf(run.SiemensFirstStudyNr, run.SiemensFirstImageNr + behind);
    return nameOf(fileStudyNr(run) + (run.SiemensFixedRunNumber ? 0 : volume),
                  fileImageNr(run, project()) + volume + behind);
}

// The slices that this file has tiles for. If no tile fits, all are assigned to it, and
// holdsAllSlices() fails.
TiledImageLayout SquareTiledImageReader::layoutOf(int file) const {
    const int side = settings().SiemensMosaicResolution;
    const qint64 tiles = tilesPerFile(settings(), project());
    VolumeSize part = project().size();
    if (tiles != 0)
        part.slices = int(std::min(part.slices - file * tiles, tiles));
    return {side, side, part};
}

bool SquareTiledImageReader::readFiles(Stage stage, int volume) {
    const TiledImageLayout layout = layoutOf(0);
    if (!layout.holdsAllSlices())
        return failWith(unusableLayoutMessage(layout));
    if (targetVolume(stage, volume).empty())
        return false;
    if (!reserveBuffer(qint64(layout.imageSamples()) * 2)) {
        endProgram(1);
        return false;
    }
    // Slices beyond the tiles of two files stay as they are.
    const int nrOfFiles = filesPerVolume(settings(), project()) > 1 ? 2 : 1;
    for (int file = 0; file < nrOfFiles; ++file)
        if (!readTiles(stage, volume, file))
            return false;
    return true;
}

bool SquareTiledImageReader::readTiles(Stage stage, int volume, int file) {
    const auto image = awaitHeadedFile({.name = fileName(stage, volume, file),
                                        .firstOfRun = stage == Stage::FirstVolume && file == 0,
                                        .headerBytes = headerBytes_,
                                        .sampleBytes = qint64(layoutOf(file).imageSamples()) * 2,
                                        .settleMilliseconds = 30});
    return image && storeTiles(image->samples, file, targetVolume(stage, volume));
}

bool SquareTiledImageReader::storeTiles(std::span<const uint8_t> samples, int file,
                                        std::span<int16_t> volume) const {
    const TiledImageLayout layout = layoutOf(file);
    const size_t count = layout.volume.samples();
    const size_t start = file == 0 ? 0 : layoutOf(0).volume.samples();
    if (start + count > volume.size())
        return false;
    if (order_ == TileOrder::Ascending)
        return splitMosaic(samples, volume.subspan(start, count), layout);
    const std::span<int16_t> part = volume.subspan(volume.size() - start - count, count);
    if (!splitMosaic(samples, part, layout))
        return false;
    reverseParts(part, layout.volume.slices);
    return true;
}

QString SiemensImaMosaicReader::nameOf(qint64 study, qint64 image) const {
    return imaFileName(settings(), study, image);
}

bool SiemensImaMosaicReader::readHeaders() {
    readSiemensIMAHeader(watchedPath(firstImaFileName(settings())), state().rawDataByteOrder,
                         project());
    return true;
}

QString SiemensPixelDataReader::nameOf(qint64 /*study*/, qint64 image) const {
    return settings().philipsFilePrefix + paddedNumber(image, 3);
}
