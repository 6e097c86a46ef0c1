// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/file_volume_reader.h"

#include "base/messages.h"
#include "base/paths.h"
#include "intake/dicom_refusal.h"

#include <QFileInfo>

QString FileVolumeReader::watchedPath(const QString& name) const {
    return paths::join(state().watchFolder, name);
}

QString FileVolumeReader::await(const ExpectedFile& expected, int settleMilliseconds) {
    return awaitFile(expected,
                     {.timeOutMilliseconds = settings().timeOutMilliseconds,
                      .settleMilliseconds = settleMilliseconds},
                     context_.pump);
}

bool FileVolumeReader::readWhole(const QString& fileName, const QString& memoryMessage) {
    switch (file_.read(fileName)) {
    case FileBytes::Result::CannotOpen:
        return failWith("ERROR: Can not open file !");
    case FileBytes::Result::NoMemory:
        return failWith(memoryMessage + fileName + " !");
    case FileBytes::Result::Done:
        break;
    }
    return true;
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

void FileVolumeReader::explainLateFile(const QStringList& names, const QString& memoryMessage) {
    for (const QString& name : names)
        if (QFileInfo(name).isFile() && readWhole(name, memoryMessage) && !acceptsFile(name))
            return;
}

std::optional<PixelData> FileVolumeReader::pixelData(const QString& fileName, PixelKeySearch search,
                                                     const QString& missingMessage) {
    const std::optional<PixelData> found = findPixelData(bytes(), search);
    if (!found) {
        showWarning(missingMessage);
        return std::nullopt;
    }
    if (found->encapsulated) {
        showWarning(compressedMessage(fileName, "unknown"));
        return std::nullopt;
    }
    return found;
}

bool FileVolumeReader::holdsSamples(std::span<const uint8_t> samples, size_t count,
                                    const QString& fileName) {
    return samples.size() / 2 >= count ||
           failWith(QString("ERROR: File \"%1\" holds less image data than stated in the settings "
                            "file !")
                        .arg(fileName));
}
