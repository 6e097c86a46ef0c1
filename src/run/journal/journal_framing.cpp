// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_framing.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "run/journal/journal_format.h"

#include <algorithm>
#include <zlib.h>

namespace {

// A byte above 127, both forms of a line end and the end-of-file character of some text readers: a
// copy that took the file for text changes one of them.
constexpr std::array<uint8_t, 8> magic{0x89, 'V', 'C', 'J', '\r', '\n', 0x1a, '\n'};

constexpr std::array<uint8_t, 4> marker{0xd5, 'R', 'E', 'C'};
constexpr size_t kindPosition = marker.size();

template<typename Bytes> Bytes arrayOf(const ByteWriter& writer) {
    Bytes bytes{};
    std::ranges::copy(writer.result(), bytes.begin());
    return bytes;
}

bool begins(std::span<const uint8_t> bytes, std::span<const uint8_t> expected) {
    const size_t count = std::min(bytes.size(), expected.size());
    return std::ranges::equal(bytes.first(count), expected.first(count));
}

} // namespace

JournalHead journalHead() {
    ByteWriter writer;
    writer.raw(magic);
    writer.u32(journalVersion);
    writer.u32(0); // reserved
    return arrayOf<JournalHead>(writer);
}

JournalHeadState checkJournalHead(std::span<const uint8_t> bytes) {
    if (!begins(bytes, magic))
        return JournalHeadState::Foreign;
    if (bytes.size() < journalHeadBytes)
        return JournalHeadState::CutOff;
    ByteReader reader(bytes);
    reader.skip(magic.size());
    return reader.u32() == journalVersion ? JournalHeadState::Good : JournalHeadState::Foreign;
}

JournalRecordHeaderBytes encodedRecordHeader(const JournalRecordHeader& header) {
    ByteWriter writer;
    writer.raw(marker);
    writer.u32(header.kind);
    writer.u64(header.length);
    writer.u32(header.checksum);
    return arrayOf<JournalRecordHeaderBytes>(writer);
}

JournalRecordHeader parsedRecordHeader(const JournalRecordHeaderBytes& bytes) {
    ByteReader reader(bytes);
    reader.skip(kindPosition);
    JournalRecordHeader header;
    header.kind = reader.u32();
    header.length = reader.u64();
    header.checksum = reader.u32();
    return header;
}

bool beginsLikeRecord(std::span<const uint8_t> bytes) {
    return begins(bytes, marker);
}

uint32_t checksumOfHeader(const JournalRecordHeaderBytes& bytes) {
    return checksumWith(
        0, std::span(bytes).subspan(kindPosition, journalChecksumPosition - kindPosition));
}

uint32_t checksumWith(uint32_t checksum, std::span<const uint8_t> bytes) {
    // zlib starts again from 0 when it is given a null pointer, which an empty span may have.
    return bytes.empty() ? checksum : uint32_t(crc32_z(checksum, bytes.data(), bytes.size()));
}
