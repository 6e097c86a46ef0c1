// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_records.h"

#include <QFile>
#include <gtest/gtest.h>

// One that was written earlier holds all fields in their order; then one with times of slices.
TEST(JournalRecords, AHeadReadsBackAndIsWrittenAsEver) {
    QFile file(VELO_SOURCE_DIR "/tests/fuzz/corpus/run_records/head");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray earlier = file.readAll();
    std::vector<uint8_t> bytes(earlier.begin(), earlier.end());
    for (int round = 0; round < 2; ++round) {
        RunHead head;
        head.project.sliceTimes = {9.0f};
        head.project.ProtocolFiles << "former";
        ASSERT_TRUE(decodeHead(bytes, head));
        EXPECT_EQ(encodeHead(head), bytes);
        head.project.sliceTimes = {1.0f, 2.0f};
        bytes = encodeHead(head);
    }
}
