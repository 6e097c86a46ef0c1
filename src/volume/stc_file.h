// The data files of a functional run (.stc): 16-bit little-endian samples, slice after slice.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/progress.h"
#include "volume/fmr_project.h"

// Format 2 is one file without header: sample (x, y) of volume v in slice s is at sample offset ((s
// * NrOfVolumes + v) * ResolutionY + y) * ResolutionX + x. Format 1, which is only read, is one
// file per slice, named with the slice's number from 1: two 16-bit sizes, then the volumes.

/// Path of the format 2 file that is written: target folder, prefixOfFiles(), ".stc". Other writers
/// drop only one "-" at the end of the prefix: if such a file exists, that one is read.
[[nodiscard]] QString stcFileName(const FMRProject& project);

/// Writes the first volumes of the run, as many as the smaller of `nrOfVolumesWritten` and the
/// analysed ones; a volume without memory is written as zeros. The file appears under its name only
/// when it is complete. Progress, if a reporter is given, goes from `from` to `to` slice by slice,
/// and events, if a pump is given, are processed after each slice: the caller keeps the project
/// alive. False, with an existing file untouched: after a message when the folder can't be written,
/// the disk is full or the name is not that of a regular file, without one when the reporter is
/// cancelled.
[[nodiscard]] bool writeSTCData(const FMRProject& project, int nrOfVolumesWritten,
                                ProgressReporter* progress, EventPump* pump, int from, int to);

/// Reads the file of writeSTCData() back. True when it holds the first volumes of the run, as many
/// as were written, and nothing else. Shows nothing; events are processed after each slice.
[[nodiscard]] bool stcDataReadBack(const FMRProject& project, int nrOfVolumesWritten,
                                   EventPump& pump);

/// Checks the sizes of the project against its data files. A missing or short file, anything but a
/// regular file (which is not opened), or slice files of another matrix end the program with status
/// 1 after a message; false then. Extra bytes after the data are ignored.
[[nodiscard]] bool checkSTCFiles(const FMRProject& project);

/// Checks, then reads the data files of either format into the allocated volumes of the project. A
/// pump processes events after each slice.
[[nodiscard]] bool readSTCData(FMRProject& project, EventPump* pump = nullptr);

/// Reads one volume, from 0, of another run, whose header is `targetFMR` and whose data are beside
/// it. `header` receives the other run's header. A missing or short data file, a volume that the
/// run doesn't have, or a shortage of memory ends the program with status 1 after a message.
[[nodiscard]] bool readSTCVolume(int volume, const QString& targetFMR, FMRHeader& header,
                                 Volume& samples);

/// Why readSTCVolume() would end the program for the run whose header, in the file `targetFMR`, is
/// this; empty when its data are there. Of one file per slice only the first is looked at.
[[nodiscard]] QString savedDataFault(FMRHeader header, const QString& targetFMR);

/// Reads all volumes of one slice, from 0, from a format 1 file into the allocated volumes of the
/// project. Failures end the program with status 1 after a message.
[[nodiscard]] bool readSliceSTC(FMRProject& project, int slice, const QString& fileName);
