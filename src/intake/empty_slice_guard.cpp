// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/empty_slice_guard.h"

#include "base/messages.h"

#include <algorithm>

bool EmptySliceGuard::readOnce(int volume) {
    return volume == firstVolume ? reader_->readFirstVolume() : reader_->readVolume(volume);
}

bool EmptySliceGuard::readFilled(int volume) {
    constexpr int pollMilliseconds = 100;
    const StopWatch total(context_.pump);
    if (!readOnce(volume))
        return false;
    const StopWatch waited(context_.pump);
    int late = lateSlice(volume);
    while (late >= 0 && !context_.pump.waitsGivenUp() &&
           double(waited.elapsed()) < double(context_.project.TR) &&
           total.elapsed() < context_.settings.timeOutMilliseconds) {
        const qint64 start = context_.pump.microseconds();
        context_.pump.pumpWait(pollMilliseconds);
        context_.state.waitedForFiles += context_.pump.microseconds() - start;
        // If the file has disappeared meanwhile, what was read is kept.
        if (!readOnce(volume))
            break;
        late = lateSlice(volume);
    }
    if (late >= 0 && !context_.pump.waitsGivenUp())
        warn(volume, late);
    wasEmpty_.swap(isEmpty_);
    return true;
}

int EmptySliceGuard::lateSlice(int volume) {
    FMRProject& project = context_.project;
    const size_t slices = size_t(std::max(project.NrOfSlices, 0));
    isEmpty_.resize(slices);
    wasEmpty_.resize(slices);
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
        if (isEmpty_[slice] && !wasEmpty_[slice])
            late = int(slice);
    }
    return late;
}

void EmptySliceGuard::warn(int volume, int slice) {
    constexpr int mostWarnings = 3;
    const bool anyFilled = std::ranges::find(isEmpty_, char(0)) != isEmpty_.end();
    if (nrOfWarnings_ >= mostWarnings || (volume == firstVolume && anyFilled))
        return;
    ++nrOfWarnings_;
    const QString name =
        volume == firstVolume ? QString("the first volume") : QString("volume %1").arg(volume + 1);
    showModelessWarning(QString("WARNING: Slice %1 of %2 contains only zeros and was accepted. "
                                "Are the files of the scanner copied too slowly?")
                            .arg(slice + 1)
                            .arg(name));
}
