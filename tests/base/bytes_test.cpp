// Writing and reading of binary data.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_reader.h"
#include "base/byte_writer.h"

#include <gtest/gtest.h>

TEST(Bytes, AreWrittenLittleEndian) {
    ByteWriter writer;
    writer.u8(0xfe);
    writer.u32(0x89abcdef);
    writer.u64(0x0123456789abcdef);
    writer.i32(-2);
    writer.i64(INT64_MIN);
    writer.f32(-1.5f);
    writer.text(QString::fromUtf8("µ"));
    writer.bytes({});
    // From Python's struct.pack("<BIQiqf", ...), then length and UTF-8 of the text, and a length.
    const auto expected = QByteArray::fromHex("feefcdab89efcdab8967452301feffffff0000000000000080"
                                              "0000c0bf02000000c2b500000000");
    EXPECT_EQ(QByteArrayView(writer.result()).toByteArray().toHex(), expected.toHex());
}

TEST(Bytes, ALengthBeyondTheRestGivesNothing) {
    for (const uint32_t length : {4U, 0x80000000U, 0xffffffffU}) {
        ByteWriter writer;
        writer.u32(length);
        writer.raw(std::array<uint8_t, 3>{'a', 'b', 'c'});
        ByteReader reader(writer.result());
        EXPECT_EQ(reader.text(), QString()) << length;
        EXPECT_TRUE(reader.failed()) << length;
    }
}
