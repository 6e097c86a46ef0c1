// The bytes around the payloads: head of the file, header of a record, checksum.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

inline constexpr size_t journalHeadBytes = 16;
inline constexpr size_t journalRecordHeaderBytes = 20;
inline constexpr size_t journalChecksumPosition = 16; ///< within the header of a record

using JournalHead = std::array<uint8_t, journalHeadBytes>;
using JournalRecordHeaderBytes = std::array<uint8_t, journalRecordHeaderBytes>;

/// What stands before a payload.
struct JournalRecordHeader {
    uint32_t kind = 0;
    uint64_t length = 0;   ///< of the payload, in bytes
    uint32_t checksum = 0; ///< CRC-32 of kind, length and payload
};

/// The head of a new journal.
[[nodiscard]] JournalHead journalHead();

enum class JournalHeadState { Good, CutOff, Foreign };
/// Whether a file whose first bytes (at most journalHeadBytes) are these is a journal that this
/// version reads. `CutOff` when they are only the beginning of a head, or none.
[[nodiscard]] JournalHeadState checkJournalHead(std::span<const uint8_t> bytes);

[[nodiscard]] JournalRecordHeaderBytes encodedRecordHeader(const JournalRecordHeader& header);
[[nodiscard]] JournalRecordHeader parsedRecordHeader(const JournalRecordHeaderBytes& bytes);
/// Whether bytes, of which there may be fewer than a marker has, can begin a record.
[[nodiscard]] bool beginsLikeRecord(std::span<const uint8_t> bytes);

/// The checksum begins with that of the header's kind and length...
[[nodiscard]] uint32_t checksumOfHeader(const JournalRecordHeaderBytes& bytes);
/// ...and goes on over the payload, in any number of pieces.
[[nodiscard]] uint32_t checksumWith(uint32_t checksum, std::span<const uint8_t> bytes);
