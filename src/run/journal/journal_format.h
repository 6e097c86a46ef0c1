// A journal: records that are appended to one file while a run goes on, so that whatever ends the
// program, all that came before can be read back. What the records hold is the affair of those who
// write and read them. The bytes are described in docs/file_formats_journal.md.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

/// One record as it was read. `payload` is valid during the callback, or until the next record.
struct JournalRecord {
    uint32_t kind = 0;
    std::span<const uint8_t> payload;
};

inline constexpr uint32_t journalVersion = 1;
