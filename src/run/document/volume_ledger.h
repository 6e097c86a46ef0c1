// Where the time of each volume of a run went.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>
#include <array>
#include <span>
#include <vector>

/// Every moment of a volume belongs to one of these, in the order of the columns of the table. Two
/// of them are not work: waiting for the files of the scanner (Waiting), and the forced delay of a
/// replay (Holding).
enum class VolumeStage {
    Waiting, ///< for the files, until each was seen
    Reading, ///< of all files of the volume, with the time in which they settle
    Journal,
    PlugIn, ///< both calls
    Motion,
    Smoothing,
    Protocol, ///< one that arrives, with the wait for its lines; tables of the volumes
    Holding,
    Regions, ///< loading, curves, selection of voxels
    Plots,
    Logs,
    Classification,
    Feedback,
    Decoder,
    Model,   ///< with the t values
    Maps,    ///< clusters
    Drawing, ///< grey images; telling the views what to show
    Window   ///< its events, in which the views are painted, and all that is left
};
inline constexpr size_t nrOfVolumeStages = size_t(VolumeStage::Window) + 1;

/// The stage in a sentence: "motion correction", "the plug-in".
[[nodiscard]] const char* nameOf(VolumeStage stage);
/// The heading of its column in the table.
[[nodiscard]] const char* columnOf(VolumeStage stage);

/// One volume. All times are microseconds; moments count from the start of the run.
struct VolumeTimes {
    qint64 noticed = 0;    ///< its last file; without files, when it was asked for
    qint64 sinceLast = -1; ///< from the notice of the volume before; -1 for the first
    qint64 done = 0;
    qint64 due = 0;      ///< when the next volume is expected
    bool played = false; ///< it was measured before, in a run that is recovered or goes on
    std::array<qint64, nrOfVolumeStages> stages = {};

    [[nodiscard]] qint64 of(VolumeStage stage) const { return stages[size_t(stage)]; }
    /// From the end of the volume before: the sum of all stages.
    [[nodiscard]] qint64 total() const;
    /// The work: the total without Waiting and Holding.
    [[nodiscard]] qint64 needed() const;
    /// The stage that took most of the work.
    [[nodiscard]] VolumeStage longest() const;
    /// Above 0: it was not done when the next volume was expected. Else what was left.
    [[nodiscard]] qint64 late() const { return done - due; }
};

/// What a reader tells of a volume, in microseconds of the pump's clock.
struct VolumeReading {
    qint64 waited = 0;   ///< for its files
    qint64 noticed = -1; ///< its last file; -1 for a volume without files
    qint64 events = 0;   ///< spent on events of the window meanwhile
    bool played = false;
};

/// The volumes of one run. The loop says what it does next; the time until then belongs to what it
/// did before. `now` is in microseconds of the pump's clock and never goes back.
class VolumeLedger {
public:
    /// The loop begins; forgets the run before. `TR` in milliseconds.
    void begin(qint64 now, double TR);
    /// The loop turns to the next volume, which is listed once it has been read.
    void startVolume(qint64 now);
    /// The volume has been read and counts.
    void volumeRead(qint64 now, const VolumeReading& reading);
    /// From now on the volume passes this stage. Without a volume nothing happens.
    void enter(VolumeStage stage, qint64 now);
    /// The volume at hand is held until this time after the start of the run, and the next one by
    /// a TR longer.
    void holdTo(qint64 sinceStart);
    /// The volume is done, as far as is known, and is one of volumes() from now on. May be called
    /// again before the next one starts: time up to the last call belongs to this volume.
    void settle(qint64 now);

    /// Those that are done.
    [[nodiscard]] std::span<const VolumeTimes> volumes() const {
        return std::span(volumes_).first(nrOfSettled_);
    }
    /// Those that are done, and the one at hand as far as it has come.
    [[nodiscard]] std::span<const VolumeTimes> allVolumes() const { return volumes_; }
    /// Microseconds; 0 if the settings give none that can be used.
    [[nodiscard]] qint64 TR() const { return TR_; }

    /// The volume needs more than three quarters of the TR: the run is about to fall behind.
    [[nodiscard]] bool isSlow(const VolumeTimes& volume) const {
        return TR_ > 0 && 4 * volume.needed() > 3 * TR_;
    }
    /// The volume was waited for, and came more than one and a half TR after the one before:
    /// scanner, network or disk kept it back, not the program.
    [[nodiscard]] bool cameLate(const VolumeTimes& volume) const {
        return TR_ > 0 && !volume.played && volume.of(VolumeStage::Waiting) > 0 &&
               2 * volume.sinceLast > 3 * TR_;
    }

private:
    void account(qint64 now);

    std::vector<VolumeTimes> volumes_;
    size_t nrOfSettled_ = 0;
    bool open_ = false; ///< the last volume is at hand
    VolumeStage stage_ = VolumeStage::Window;
    qint64 start_ = 0;
    qint64 mark_ = 0; ///< up to here all time is accounted for
    qint64 TR_ = 0;
    /// When a volume 0 would have come, by the volume that came earliest against its place.
    qint64 firstExpected_ = 0;
    bool firstIsKnown_ = false;
};
