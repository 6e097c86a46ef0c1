// The interface of the readers, one for each data type.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/intake_context.h"

#include <memory>

/// Waits for the files of a volume and reads them. Both read operations block, processing events,
/// until the volume is complete. They return false on a time-out or when a file can't be opened or
/// read, and show messages for damaged files only.
class VolumeReader {
public:
    virtual ~VolumeReader() = default;
    /// Determines, before the first wait, which folder to watch and which files to expect. False
    /// after a message when waiting would be useless.
    [[nodiscard]] virtual bool prepare() { return true; }
    /// Into project.firstVolume: the first measured volume, whatever number is skipped.
    [[nodiscard]] virtual bool readFirstVolume() = 0;
    /// Into project.volumes[volume]; 0 is the first analysed one.
    [[nodiscard]] virtual bool readVolume(int volume) = 0;
    /// Takes geometry and timing from the headers of the first files into the project. False after
    /// a message when the file contradicts the settings.
    [[nodiscard]] virtual bool readHeaders() { return true; }
    /// A recorded run has given its last volume: what readVolume() waited for will never come.
    [[nodiscard]] virtual bool isAtEnd() const { return false; }
    /// The volume that was read last was measured before, in a run that is recovered or goes on.
    [[nodiscard]] virtual bool playsMeasuredVolumes() const { return false; }
};

/// The reader of settings.documentDataType, or nullptr for a type that has none. It waits for
/// slices that are still empty (empty_slice_guard.h).
[[nodiscard]] std::unique_ptr<VolumeReader> makeVolumeReader(const IntakeContext& context);
