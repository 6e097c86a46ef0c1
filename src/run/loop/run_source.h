// Where a run comes from: a scanner, the journal of an earlier run, a saved run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"
#include "volume/motion_correction.h"

#include <functional>
#include <memory>

class RunSource {
public:
    RunSource() = default;
    virtual ~RunSource() = default;
    RunSource(const RunSource&) = delete;
    RunSource& operator=(const RunSource&) = delete;

    /// Fills the settings of the run from its settings file, or from what was kept of it.
    /// `stopTimer` as for readSettingsFile(). False after a message.
    [[nodiscard]] virtual bool readSettings(RunSettings& settings,
                                            const std::function<void()>& stopTimer) = 0;
    /// The reader of the volumes; nullptr when the data type has none.
    [[nodiscard]] virtual std::unique_ptr<VolumeReader>
    makeReader(const IntakeContext& context) = 0;
    /// It is measured now, or the rest of it, once; otherwise it was measured before.
    [[nodiscard]] virtual bool isMeasured() const { return false; }
    /// What its journal takes on the disk already.
    [[nodiscard]] virtual qint64 bytesOfJournal() const { return 0; }
    /// For motion correction to another run of the session: the target. False after a message.
    [[nodiscard]] virtual bool loadMotionTarget(const RunSettings& settings,
                                                const FMRProject& project,
                                                MotionCorrection& motion) {
        return loadIntraSessionTarget(settings.IntraSessionMotionCorrectionFile, project, motion);
    }
};
