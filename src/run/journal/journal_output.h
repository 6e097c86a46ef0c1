// Where a journal is written to: a seam, so that in a test the disk can be slow, full or gone.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <span>

class JournalOutput {
public:
    virtual ~JournalOutput() = default;
    /// Appends all of `bytes`. False when that fails; some of them may have been written then.
    [[nodiscard]] virtual bool write(std::span<const uint8_t> bytes) = 0;
    /// Returns when all that was written is on the disk; false when that fails, or when the file
    /// was removed meanwhile.
    [[nodiscard]] virtual bool forceOut() = 0;
};

/// Creates a file; nullptr when that fails or something of this name exists, which is never
/// replaced. The first forceOut() also forces out the entry in its folder. While a journal is open,
/// nobody else can continue it.
///
/// A write beyond a limit of the file size (RLIMIT_FSIZE) fails like one to a full disk, provided
/// that the program ignores the signal SIGXFSZ, which would end it.
[[nodiscard]] std::unique_ptr<JournalOutput> createJournalFile(const QString& path);

/// Opens an existing journal and cuts it to `keepBytes`, the goodBytes of its scan, to go on after
/// its last whole record. nullptr, with the file as it was, when it is no regular file, can't be
/// opened for writing, is shorter than that, or is written by somebody else.
[[nodiscard]] std::unique_ptr<JournalOutput> continueJournalFile(const QString& path,
                                                                 qint64 keepBytes);

/// Whether this or another program on this computer has the journal open for writing. Also false
/// where that can't be found out.
[[nodiscard]] bool journalIsInUse(const QString& path);
