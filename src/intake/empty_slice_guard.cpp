// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/empty_slice_guard.h"

#include "base/messages.h"

#include <algorithm>

bool EmptySliceGuard::readOnce(int volume) {
    return volume == firstVolume ? reader_->readFirstVolume() : reader_->readVolume(volume);
}

// Where the files have gone meanwhile they are waited for only as long as slices are.
bool EmptySliceGuard::readAgain(int volume, double longestMilliseconds) {
    IntakeState& state = context_.state;
    state.longestFileWait = int(std::max(longestMilliseconds, 0.0));
    const bool read = readOnce(volume);
    state.longestFileWait = IntakeState::unlimitedWait;
    return read;
}

bool EmptySliceGuard::readFilled(int volume) {
    constexpr int pollMilliseconds = 100;
    if (!readOnce(volume))
        return false;
    const StopWatch waited(context_.pump);
    const double longest =
        std::min(double(context_.project.TR), double(context_.settings.timeOutMilliseconds));
    int late = lateSlice(volume);
    while (late >= 0 && !context_.pump.waitsGivenUp() && double(waited.elapsed()) < longest) {
        const qint64 start = context_.pump.microseconds();
        context_.pump.pumpWait(pollMilliseconds);
        context_.state.waitedForFiles += context_.pump.microseconds() - start;
        // What was read is kept.
        if (!readAgain(volume, longest - double(waited.elapsed())))
            break;
        late = lateSlice(volume);
    }
    if (late >= 0 && !context_.pump.waitsGivenUp())
        warn(volume, late);
    learn(volume);
    return true;
}

int EmptySliceGuard::lateSlice(int volume) {
    FMRProject& project = context_.project;
    const size_t slices = size_t(std::max(project.NrOfSlices, 0));
    isEmpty_.resize(slices);
    volumesEmpty_.resize(slices);
    std::ranges::fill(isEmpty_, char(0));
    const size_t index = size_t(std::max(volume, 0));
    if (volume != firstVolume && index >= project.volumes.size())
        return -1;
    const std::span<const int16_t> samples =
        volume == firstVolume ? project.firstVolume.span() : project.volumes[index];
    const size_t sliceSamples = project.sliceSamples();
    if (sliceSamples == 0 || samples.size() != project.volumeSamples())
        return -1;
    int late = -1;
    for (size_t slice = slices; slice-- > 0;) {
        const auto part = samples.subspan(slice * sliceSamples, sliceSamples);
        isEmpty_[slice] = std::ranges::all_of(part, [](int16_t sample) { return sample == 0; });
        if (isEmpty_[slice] && volumesEmpty_[slice] < volumesToLearn)
            late = int(slice);
    }
    return late;
}

// Slices that were not waited for are known already, so that only volumes with slices that came too
// late add to the counts, until enough of them agree.
void EmptySliceGuard::learn(int volume) {
    if (!anyFilled())
        return;
    for (size_t slice = 0; slice < isEmpty_.size(); ++slice) {
        int& count = volumesEmpty_[slice];
        if (!isEmpty_[slice])
            count = 0;
        else
            count = volume == firstVolume ? volumesToLearn : std::min(count + 1, volumesToLearn);
    }
}

bool EmptySliceGuard::anyFilled() const {
    return std::ranges::find(isEmpty_, char(0)) != isEmpty_.end();
}

void EmptySliceGuard::warn(int volume, int slice) {
    constexpr int mostWarnings = 3;
    if (nrOfWarnings_ >= mostWarnings || (volume == firstVolume && anyFilled()))
        return;
    ++nrOfWarnings_;
    const QString name =
        volume == firstVolume ? QString("the first volume") : QString("volume %1").arg(volume + 1);
    showModelessWarning(QString("WARNING: Slice %1 of %2 contains only zeros and was accepted. "
                                "Are the files of the scanner copied too slowly?")
                            .arg(slice + 1)
                            .arg(name));
}
