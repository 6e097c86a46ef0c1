// What the records of a run's journal hold (docs/file_formats_journal.md).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_listeners.h"
#include "run/replay/scanner_run.h"
#include "volume/fmr_project.h"

#include <cstdint>
#include <span>
#include <vector>

/// Kinds of records; readers pass over those that they don't know.
enum class RecordKind : uint32_t {
    Head = 1,         ///< first, once
    FirstVolume = 2,  ///< samples of the first measured volume
    MotionTarget = 3, ///< samples of the volume of another run that is the target
    MeasuredVolume = 4,
    Listener = 5,  ///< a RunRecord
    LoopEnded = 6, ///< no further volume comes: the last one, a time-out, or a stop
    Saved = 7,     ///< the results are on disk, whole: there is nothing to recover
};

/// What a run was prepared from, and what preparation found out.
struct RunHead {
    qint64 startedAt = 0; ///< milliseconds since 1970, UTC
    QString programVersion;
    InputFile settings;
    InputFile protocol; ///< of one that arrives, what was there at the start
    InputFile contrasts;
    qint64 protocolHeadBytes = 0; ///< length of the header of a protocol that arrives
    QString projectName;
    QString targetFolder;
    QString watchFolder; ///< the one in which the first file was found
    FMRHeader project;
};

/// When a volume was complete.
struct VolumeArrival {
    int volume = 0;       ///< from 0
    qint64 wallClock = 0; ///< milliseconds since 1970, UTC; may jump
    /// Milliseconds of a clock that doesn't; starts again when the program goes on with a run.
    qint64 sinceFirstVolume = 0;
};

/// Where in the cycle of the volume before it in the journal a listener's record was made.
/// As it stands in the file; notAfter() tells the order in a volume.
enum class RecordMoment : uint8_t {
    BeforeModel = 0,   ///< from the regions' time courses to the model
    AfterModel = 1,    ///< to the end of the volume
    Waiting = 2,       ///< for the next one
    BeforeRegions = 3, ///< from the volume's arrival to the regions' time courses
};

/// True when `first` is not after `second` in the cycle of a volume.
[[nodiscard]] bool notAfter(RecordMoment first, RecordMoment second);

struct ListenerRecord {
    RecordMoment moment = RecordMoment::Waiting;
    RunRecord record;
};

[[nodiscard]] std::vector<uint8_t> encodeHead(const RunHead& head);
[[nodiscard]] std::vector<uint8_t> encodeArrival(const VolumeArrival& arrival);
[[nodiscard]] std::vector<uint8_t> encodeListenerRecord(const ListenerRecord& record);

// False when the bytes are not such a record, or state sizes or times that no run has.
[[nodiscard]] bool decodeHead(std::span<const uint8_t> payload, RunHead& head);
[[nodiscard]] bool decodeListenerRecord(std::span<const uint8_t> payload, ListenerRecord& record);
/// `samples` receives the part of the payload that holds them, 16 bit little endian.
[[nodiscard]] bool decodeVolume(std::span<const uint8_t> payload, VolumeArrival& arrival,
                                std::span<const uint8_t>& samples);

/// The samples as bytes in little-endian order; `swapped` serves on other machines.
[[nodiscard]] std::span<const uint8_t> sampleBytes(std::span<const int16_t> samples,
                                                   std::vector<int16_t>& swapped);
/// False, with nothing copied, when the number of bytes is not that of the samples.
[[nodiscard]] bool copySamples(std::span<const uint8_t> bytes, std::span<int16_t> samples);
