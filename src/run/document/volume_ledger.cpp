// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/volume_ledger.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

bool isWork(size_t stage) {
    return stage != size_t(VolumeStage::Waiting) && stage != size_t(VolumeStage::Holding);
}

struct StageNames {
    const char* inSentence;
    const char* column;
};
constexpr auto stageNames = std::to_array<StageNames>({{"the wait", "wait"},
                                                       {"reading", "reading"},
                                                       {"the journal", "journal"},
                                                       {"the plug-in", "plugin"},
                                                       {"motion correction", "motion"},
                                                       {"smoothing", "smoothing"},
                                                       {"the protocol", "protocol"},
                                                       {"the delay", "hold"},
                                                       {"the regions", "regions"},
                                                       {"the plots", "plots"},
                                                       {"the logs", "logs"},
                                                       {"classification", "classification"},
                                                       {"the feedback", "feedback"},
                                                       {"the decoder", "decoder"},
                                                       {"the model", "model"},
                                                       {"clusters", "maps"},
                                                       {"drawing", "drawing"},
                                                       {"the window", "window"}});
static_assert(stageNames.size() == nrOfVolumeStages);

} // namespace

const char* nameOf(VolumeStage stage) {
    return stageNames[size_t(stage)].inSentence;
}

const char* columnOf(VolumeStage stage) {
    return stageNames[size_t(stage)].column;
}

qint64 VolumeTimes::total() const {
    return std::accumulate(stages.begin(), stages.end(), qint64(0));
}

qint64 VolumeTimes::needed() const {
    return total() - of(VolumeStage::Waiting) - of(VolumeStage::Holding);
}

VolumeStage VolumeTimes::longest() const {
    auto longest = size_t(VolumeStage::Reading);
    for (size_t stage = 0; stage < stages.size(); ++stage)
        if (isWork(stage) && stages[stage] > stages[longest])
            longest = stage;
    return VolumeStage(longest);
}

void VolumeLedger::begin(qint64 now, double TR) {
    constexpr double microseconds = 1000.0;
    constexpr double longestTR = 1e9; // milliseconds; whatever stands in a damaged header
    *this = VolumeLedger();
    start_ = mark_ = now;
    if (TR > 0.0 && TR < longestTR)
        TR_ = std::llround(TR * microseconds);
}

void VolumeLedger::startVolume(qint64 now) {
    open_ = false;
    mark_ = now;
}

// Volumes come at the pace of the TR, but none is known to come in time. The one that came
// earliest against its place tells when the others were expected; a played one tells nothing.
void VolumeLedger::volumeRead(qint64 now, const VolumeReading& reading) {
    const qint64 lasted = now - mark_;
    const qint64 waited = std::clamp(reading.waited, qint64(0), lasted);
    VolumeTimes volume;
    volume.played = reading.played;
    // What is to be painted is painted when the program begins to wait.
    const qint64 events = std::clamp(reading.events, qint64(0), lasted);
    const qint64 inWait = std::min(events, waited);
    volume.stages[size_t(VolumeStage::Waiting)] = waited - inWait;
    volume.stages[size_t(VolumeStage::Window)] = events;
    volume.stages[size_t(VolumeStage::Reading)] = lasted - waited - (events - inWait);
    const qint64 noticed = reading.noticed < 0 ? mark_ + waited : reading.noticed;
    volume.noticed = std::clamp(noticed, mark_, now) - start_;
    // Of a run that goes on, the first volume of the scanner follows none of the scanner's.
    if (!volumes_.empty() && volumes_.back().played == volume.played)
        volume.sinceLast = volume.noticed - volumes_.back().noticed;
    const qint64 place = qint64(volumes_.size()) * TR_;
    const qint64 first = volume.noticed - place;
    if (!volume.played) {
        firstExpected_ = firstIsKnown_ ? std::min(firstExpected_, first) : first;
        firstIsKnown_ = true;
    }
    volume.due = (volume.played ? first : firstExpected_) + place + TR_;
    volumes_.push_back(volume);
    open_ = true;
    stage_ = VolumeStage::Window;
    mark_ = now;
}

void VolumeLedger::account(qint64 now) {
    if (!open_)
        return;
    volumes_.back().stages[size_t(stage_)] += now - mark_;
    mark_ = now;
}

void VolumeLedger::enter(VolumeStage stage, qint64 now) {
    account(now);
    stage_ = stage;
}

void VolumeLedger::holdTo(qint64 sinceStart) {
    if (!open_)
        return;
    firstExpected_ = sinceStart - qint64(volumes_.size() - 1) * TR_;
    volumes_.back().due = sinceStart + TR_;
}

void VolumeLedger::settle(qint64 now) {
    if (!open_)
        return;
    account(now);
    volumes_.back().done = now - start_;
    nrOfSettled_ = volumes_.size();
}
