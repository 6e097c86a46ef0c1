// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/file_volume_reader.h"

#include "base/messages.h"
#include "base/paths.h"

#include <algorithm>
#include <cstring>

int FileVolumeReader::timeOutMilliseconds() const {
    return std::min(settings().timeOutMilliseconds, state().longestFileWait);
}

QString FileVolumeReader::watchedPath(const QString& name) const {
    return paths::join(state().watchFolder, name);
}

ExpectedFile FileVolumeReader::expectedFirstFile(const QString& name, qint64 size) const {
    if (!settings().WatchFolder.isEmpty() || settings().watchFolderList.isEmpty())
        return {{watchedPath(name)}, size, true};
    ExpectedFile expected{{}, size, false};
    for (const QString& folder : settings().watchFolderList)
        expected.names << paths::join(folder, name);
    return expected;
}

void FileVolumeReader::takeFirstFile(const QString& path) {
    state().watchFolder = paths::folderWithSlash(path);
    project().FirstDataSourceFile = paths::fileName(path);
}

FileWaitScope FileVolumeReader::tellWait(const ExpectedFile& expected) {
    return {state().fileWait,
            {.file = expected,
             .missingPart = {},
             .start = pump().milliseconds(),
             .timeOutMilliseconds = timeOutMilliseconds()}};
}

QString FileVolumeReader::awaitPath(const ExpectedFile& expected, const WaitTimes& times,
                                    const FollowingFiles& following) {
    const qint64 start = pump().microseconds();
    const ArrivedFile arrived = arrival_.await(expected, times, following);
    if (!arrived.name.isEmpty()) {
        state().lastFileNoticed = arrived.noticedAt;
        // One of several may have been seen while another was awaited.
        state().waitedForFiles += std::max(1000 * arrived.noticedAt - start, qint64(0));
    }
    return arrived.name;
}

bool FileVolumeReader::waitAgain(const StopWatch& watch, const QString& fileName,
                                 int pollMilliseconds) {
    if (pump().waitsGivenUp() || watch.elapsed() > timeOutMilliseconds())
        return false;
    const qint64 start = pump().microseconds();
    arrival_.pause({fileName}, pollMilliseconds);
    state().waitedForFiles += pump().microseconds() - start;
    return true;
}

bool FileVolumeReader::readWhole(const QString& fileName, const StopWatch& watch,
                                 const QString& memoryMessage) {
    return readPart(fileName, FilePart(), watch, memoryMessage);
}

bool FileVolumeReader::readPart(const QString& fileName, const FilePart& part,
                                const StopWatch& watch, const QString& memoryMessage) {
    for (;;) {
        const FileBytes::Result result = file_.read(fileName, part);
        if (result == FileBytes::Result::Done)
            return true;
        if (result == FileBytes::Result::NoMemory)
            return failWith(memoryMessage + fileName + " !");
        if (!waitAgain(watch, fileName))
            return !pump().waitsGivenUp() && failWith("ERROR: Can not open file !");
    }
}

std::span<int16_t> FileVolumeReader::ofRightSize(std::span<int16_t> volume) const {
    return volume.size() == project().volumeSamples() ? volume : std::span<int16_t>();
}

std::span<int16_t> FileVolumeReader::firstVolume() {
    return ofRightSize(project().firstVolume.span());
}

std::span<int16_t> FileVolumeReader::analysedVolume(int volume) {
    if (volume < 0 || size_t(volume) >= project().volumes.size())
        return {};
    return ofRightSize(project().volumes[size_t(volume)]);
}

std::span<int16_t> FileVolumeReader::targetSlice(Stage stage, int volume, int slice) {
    const std::span<int16_t> samples = targetVolume(stage, volume);
    if (samples.empty() || slice < 0 || slice >= project().NrOfSlices)
        return {};
    const size_t size = samples.size() / size_t(project().NrOfSlices);
    return samples.subspan(size_t(slice) * size, size);
}

bool FileVolumeReader::store(std::span<const uint8_t> samples, std::span<int16_t> target) {
    if (samples.empty() || samples.size() != target.size_bytes())
        return false;
    std::memcpy(target.data(), samples.data(), samples.size());
    return true;
}

bool FileVolumeReader::failWith(const QString& text) {
    showWarning(text);
    return false;
}
