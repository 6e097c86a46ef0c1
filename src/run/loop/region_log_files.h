// The files that a run writes about its regions, volume by volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/operator_requests.h"
#include "run/loop/run_listeners.h"
#include "run/settings/run_settings.h"

/// Knows which logs of the run have been begun: the first record of a log, whenever it is switched
/// on, replaces the file of an earlier run.
class RegionLogFiles {
public:
    /// A new run begins.
    void restart() { *this = {}; }

    /// Writes the logs that are on. A log that can't be written is told of, and the run goes on;
    /// but nothing is told of the value file that a feedback program polls. Of a volume that is
    /// played, that program has had it.
    void writeVolume(const VolumeAtHand& hand, const RunSettings& settings,
                     const OperatorRequests& requests);

private:
    void writeRTPFile(const QtCortivoDoc& document, const RunSettings& settings, int volume);
    void writeERTFile(const QtCortivoDoc& document, int volume);
    void writeBTCFile(const QtCortivoDoc& document, int volume);

    bool timeCoursesBegun_ = false;
    bool betasBegun_ = false;
};
