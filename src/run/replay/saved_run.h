// A saved run (.fmr with its data) that is replayed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/replay/played_run.h"

/// Why a saved run with this header can't be played, for the operator: its data, or values that are
/// not those of a run. Empty when it can.
[[nodiscard]] QString savedRunFault(const FMRHeader& header, const QString& path);

/// The saved samples are those that were analysed: motion is corrected and volumes are smoothed
/// again only when other settings ask for it. A saved run does not keep its settings file, so
/// PlayOptions names one in any case; `isOwn` says that it is the run's own. With that, the run is
/// played with the protocol that was recorded beside it.
class SavedRun : public RunSource {
public:
    SavedRun(PlayOptions options, bool isOwn) : options_(std::move(options)), isOwn_(isOwn) {}

    /// Reads the header. False after a message.
    [[nodiscard]] bool open();

    [[nodiscard]] bool readSettings(RunSettings& settings,
                                    const std::function<void()>& stopTimer) override;
    [[nodiscard]] std::unique_ptr<VolumeReader> makeReader(const IntakeContext& context) override;

private:
    PlayOptions options_;
    bool isOwn_;
    FMRHeader header_;
};
