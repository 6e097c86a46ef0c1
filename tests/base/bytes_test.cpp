// Writing and reading of binary data.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_reader.h"
#include "base/byte_writer.h"

#include <gtest/gtest.h>

TEST(Bytes, WhatIsWrittenLittleEndianReadsBack) {
    ByteWriter writer;
    writer.u8(0xfe);
    writer.u16(0x1234);
    writer.u32(0x89abcdef);
    writer.u64(0x0123456789abcdef);
    writer.i32(-2);
    writer.i64(INT64_MIN);
    writer.f32(-1.5f);
    writer.f64(0.1);
    writer.text(QString::fromUtf8("µ"));
    writer.bytes({});
    // From Python's struct.pack("<BHIQiqfd", ...), then length and UTF-8 of the text, and a length.
    const auto expected =
        QByteArray::fromHex("fe3412efcdab89efcdab8967452301feffffff0000000000000080"
                            "0000c0bf9a9999999999b93f02000000c2b500000000");
    const std::vector<uint8_t>& bytes = writer.result();
    EXPECT_EQ(QByteArrayView(bytes).toByteArray().toHex(), expected.toHex());

    ByteReader reader(bytes);
    EXPECT_EQ(reader.u8(), 0xfe);
    EXPECT_EQ(reader.u16(), 0x1234);
    EXPECT_EQ(reader.u32(), 0x89abcdef);
    EXPECT_EQ(reader.u64(), 0x0123456789abcdef);
    EXPECT_EQ(reader.i32(), -2);
    EXPECT_EQ(reader.i64(), INT64_MIN);
    EXPECT_EQ(reader.f32(), -1.5f);
    EXPECT_EQ(reader.f64(), 0.1);
    EXPECT_EQ(reader.text(), QString::fromUtf8("µ"));
    EXPECT_EQ(reader.sizedBytes(), QByteArray());
    EXPECT_EQ(reader.remaining(), 0U);
    EXPECT_FALSE(reader.failed());
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
