// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/file_volume_reader.h"

#include "base/messages.h"
#include "base/paths.h"
#include "intake/dicom_refusal.h"

#include <QFileInfo>

QString FileVolumeReader::watchedPath(const QString& name) const {
    return paths::join(state().watchFolder, name);
}

std::optional<FileVolumeReader::Image>
FileVolumeReader::awaitImage(const ExpectedFile& expected, Stage stage, size_t nrOfSamples) {
    const StopWatch watch = newWatch();
    const QString path = awaitFile(expected,
                                   {.timeOutMilliseconds = settings().timeOutMilliseconds,
                                    .settleMilliseconds = kind_.settleMilliseconds},
                                   context_.pump);
    if (!path.isEmpty())
        return readImage(path, watch, stage, nrOfSamples);
    if (stage == Stage::FirstVolume)
        explainLateFile(expected.names);
    return std::nullopt;
}

// One more round of polling, unless the time-out has passed.
bool FileVolumeReader::waitsOn(const StopWatch& watch) {
    if (watch.elapsed() > settings().timeOutMilliseconds)
        return false;
    context_.pump.pumpWait(WaitTimes().pollMilliseconds);
    return true;
}

bool FileVolumeReader::readWhole(const QString& fileName, const StopWatch& watch) {
    for (;;) {
        const FileBytes::Result result = file_.read(fileName);
        if (result == FileBytes::Result::Done)
            return true;
        if (result == FileBytes::Result::NoMemory)
            return failWith(kind_.memoryMessage + fileName + " !");
        if (!waitsOn(watch))
            return failWith("ERROR: Can not open file !");
    }
}

std::optional<FileVolumeReader::Image> FileVolumeReader::readImage(const QString& fileName,
                                                                   const StopWatch& watch,
                                                                   Stage stage,
                                                                   size_t nrOfSamples) {
    for (;;) {
        if (!readWhole(fileName, watch) || (stage == Stage::FirstVolume && !acceptsFile(fileName)))
            return std::nullopt;
        const std::optional<PixelData> found = findPixelData(bytes(), kind_.search);
        if (found && found->encapsulated()) {
            showWarning(compressedMessage(fileName, "unknown"));
            return std::nullopt;
        }
        const std::span<uint8_t> samples = found ? pixelBytes(bytes(), *found) : bytes().first(0);
        if (found && samples.size() / 2 >= nrOfSamples)
            return Image{fileName, samples, found->byteOrder};
        // A file that has all that it promises won't grow.
        const bool whole = found && found->statedLength && samples.size() >= *found->statedLength;
        if (!whole && waitsOn(watch))
            continue;
        showWarning(found ? QString("ERROR: File \"%1\" holds less image data than stated in the "
                                    "settings file !")
                                .arg(fileName)
                          : QString(kind_.missingKeyMessage).replace("%1", fileName));
        return std::nullopt;
    }
}

std::span<int16_t> FileVolumeReader::ofRightSize(Volume& volume) const {
    const RunSettings& run = settings();
    if (run.MatrixSizeX <= 0 || run.MatrixSizeY <= 0 || run.NrOfSlices <= 0)
        return {};
    const size_t samples =
        size_t(run.MatrixSizeX) * size_t(run.MatrixSizeY) * size_t(run.NrOfSlices);
    return volume.size() == samples ? volume.span() : std::span<int16_t>();
}

std::span<int16_t> FileVolumeReader::firstVolume() {
    return ofRightSize(project().firstVolume);
}

std::span<int16_t> FileVolumeReader::analysedVolume(int volume) {
    if (volume < 0 || size_t(volume) >= project().volumes.size())
        return {};
    return ofRightSize(project().volumes[size_t(volume)]);
}

bool FileVolumeReader::failWith(const QString& text) {
    showWarning(text);
    return false;
}

bool FileVolumeReader::acceptsFile(const QString& fileName) {
    const QString refusal = refusalOf(bytes(), fileName);
    return refusal.isEmpty() || failWith(refusal);
}

// Says why one of these files was never taken, where it is there but of no use: a compressed file
// stays below the expected size for good.
void FileVolumeReader::explainLateFile(const QStringList& names) {
    for (const QString& name : names)
        if (QFileInfo(name).isFile() && file_.read(name) == FileBytes::Result::Done &&
            !acceptsFile(name))
            return;
}
