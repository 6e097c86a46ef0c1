// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/square_mosaic_reader.h"

#include "base/program_end.h"
#include "intake/image_transformation.h"
#include "intake/siemens_ima_names.h"

bool SquareMosaicReader::readFirstVolume() {
    return readFiles(Stage::FirstVolume, 0);
}

bool SquareMosaicReader::readVolume(int volume) {
    return readFiles(Stage::Loop, volume);
}

// Tiles that the first file has no room for stand in a file that the scanner counts behind the
// first ones of all volumes.
QString SquareMosaicReader::fileName(Stage stage, int volume, int file) const {
    const RunSettings& run = settings();
    const qint64 behind = file == 0 ? 0 : run.NrOfVolumes;
    if (stage == Stage::FirstVolume)
        return nameOf(run.SiemensFirstStudyNr, run.SiemensFirstImageNr + behind);
    return nameOf(fileStudyNr(run) + (run.SiemensFixedRunNumber ? 0 : volume),
                  fileImageNr(run) + volume + behind);
}

// The part of the slices that this file has tiles for. Where none fits in, all are in it, and it
// does not hold them.
MosaicTiling SquareMosaicReader::layoutOf(int file) const {
    const RunSettings& run = settings();
    const qint64 tiles = tilesPerFile(run);
    const qint64 slices =
        tiles == 0 ? run.NrOfSlices : std::min(run.NrOfSlices - file * tiles, tiles);
    return {run.SiemensMosaicResolution, run.SiemensMosaicResolution, run.MatrixSizeX,
            run.MatrixSizeY, int(slices)};
}

bool SquareMosaicReader::readFiles(Stage stage, int volume) {
    const MosaicTiling layout = layoutOf(0);
    if (!layout.holdsAllSlices())
        return failWith(unusableLayoutMessage(layout));
    if (targetVolume(stage, volume).empty())
        return false;
    if (!reserveBuffer(qint64(layout.mosaicSamples()) * 2)) {
        endProgram(1);
        return false;
    }
    // Slices that two files have no tiles for stay as they are.
    const int nrOfFiles = filesPerVolume(settings()) > 1 ? 2 : 1;
    for (int file = 0; file < nrOfFiles; ++file)
        if (!readTiles(stage, volume, file))
            return false;
    return true;
}

bool SquareMosaicReader::readTiles(Stage stage, int volume, int file) {
    const auto image = awaitHeadedFile({.name = fileName(stage, volume, file),
                                        .firstOfRun = stage == Stage::FirstVolume && file == 0,
                                        .headerBytes = headerBytes_,
                                        .sampleBytes = qint64(layoutOf(file).mosaicSamples()) * 2,
                                        .settleMilliseconds = 30});
    return image && storeTiles(image->samples, file, targetVolume(stage, volume));
}

bool SquareMosaicReader::storeTiles(std::span<const uint8_t> samples, int file,
                                    std::span<int16_t> volume) const {
    const MosaicTiling layout = layoutOf(file);
    const size_t count = layout.volumeSamples();
    const size_t start = file == 0 ? 0 : layoutOf(0).volumeSamples();
    if (start + count > volume.size())
        return false;
    if (order_ == TileOrder::Ascending)
        return splitMosaic(samples, volume.subspan(start, count), layout);
    const std::span<int16_t> part = volume.subspan(volume.size() - start - count, count);
    if (!splitMosaic(samples, part, layout))
        return false;
    reverseParts(part, layout.nrOfSlices);
    return true;
}
