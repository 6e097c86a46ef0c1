// What the readers of scanner files work on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "base/event_pump.h"
#include "intake/dicom_header.h"
#include "intake/file_wait.h"
#include "run/settings/run_settings.h"
#include "volume/fmr_project.h"

#include <limits>

/// Lives as long as the program: a header that was parsed once keeps its values.
struct IntakeState {
    DicomHeader header;
    ByteOrder rawDataByteOrder = ByteOrder::Little;
    /// The watch folder of this run, determined when the run is prepared.
    QString watchFolder;
    /// Set while a run waits for a file or for lines of one.
    std::optional<FileWait> fileWait;
    qint64 lastFileNoticed = -1; ///< milliseconds of the pump; set by readers of files
    /// Microseconds, added up by readers of files: until these were seen, or were there whole.
    qint64 waitedForFiles = 0;
    static constexpr int unlimitedWait = std::numeric_limits<int>::max();
    /// Milliseconds that a file is waited for at most, besides the time-out of the settings; less
    /// than unlimited while a volume is read again.
    int longestFileWait = unlimitedWait;
};

struct IntakeContext {
    RunSettings& settings;
    FMRProject& project;
    IntakeState& state;
    EventPump& pump;
};
