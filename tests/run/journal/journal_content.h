// What tests write into journals, and read back.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/journal_scan.h"
#include "run/journal/journal_writer.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

/// Kind and payload.
using Record = std::pair<uint32_t, std::string>;

inline std::span<const uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

struct ReadBack {
    JournalScanResult result;
    std::vector<Record> records;
};

/// The whole records of a file (its path) or of bytes.
template<typename From> ReadBack readBack(const From& from) {
    ReadBack read;
    JournalCursor cursor(from);
    for (JournalRecord record; cursor.next(record);)
        read.records.emplace_back(record.kind,
                                  std::string(record.payload.begin(), record.payload.end()));
    read.result = cursor.result();
    return read;
}
