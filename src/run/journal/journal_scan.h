// Reading a journal back, whatever happened to it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "run/journal/journal_format.h"

#include <QString>
#include <memory>
#include <optional>

enum class JournalEnd {
    Whole,       ///< ends after a record
    CutOff,      ///< ends within the head or a record, as after a crash
    Damaged,     ///< what follows the last good record is none
    NotAJournal, ///< another kind of file, or a later version
    Unreadable,  ///< no regular file, can't be opened, the disk fails, or no memory for a record
};

struct JournalScanResult {
    JournalEnd end = JournalEnd::Whole;
    qint64 goodBytes = 0; ///< of the head and the records that are whole
    qint64 fileBytes = 0;
    int nrOfRecords = 0; ///< that are whole
};

/// Where the bytes of a journal come from.
class JournalSource;

/// Goes through the records of a journal one by one, and holds one in memory. Nothing is believed:
/// a record is whole when its marker and its checksum are right; its length is compared with what
/// is left of the file before memory is taken for it.
class JournalCursor {
public:
    explicit JournalCursor(const QString& path);
    /// The same over bytes, which must stay.
    explicit JournalCursor(std::span<const uint8_t> bytes);
    ~JournalCursor();

    /// The next whole record, whose payload is valid until the next call. False at the end or the
    /// first fault, and from then on.
    [[nodiscard]] bool next(JournalRecord& record);
    /// The same with at most `payloadBytes` of the payload; the rest is passed over, which takes a
    /// moment where next() takes seconds. The checksum can't be compared, so damage within a
    /// payload shows only at the next header, or not at all.
    [[nodiscard]] bool skim(JournalRecord& record, size_t payloadBytes);
    /// Why next() or skim() returned false; `Whole` before it has.
    [[nodiscard]] JournalEnd end() const { return result_.end; }
    /// Of the head and the records so far.
    [[nodiscard]] qint64 goodBytes() const { return result_.goodBytes; }
    [[nodiscard]] const JournalScanResult& result() const { return result_; }

private:
    void readHead();
    /// `skimmedBytes` of the payload at most; all, and checked, without it.
    using SkimmedBytes = std::optional<size_t>;
    [[nodiscard]] bool advance(JournalRecord& record, SkimmedBytes skimmedBytes);
    [[nodiscard]] JournalEnd readRecord(JournalRecord& record, SkimmedBytes skimmedBytes);

    std::unique_ptr<JournalSource> source_;
    ZeroedBuffer<uint8_t> payload_;
    JournalScanResult result_;
    bool ended_ = false;
};
