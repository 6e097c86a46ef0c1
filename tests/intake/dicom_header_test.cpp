// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_header.h"

#include "dicom_bytes.h"
#include "support/scripted_messages.h"

namespace {

constexpr const char* pastEnd =
    "ERROR: Read past the end of file, can not read file as regular DICOM!";

DicomBytes& withHeader(DicomBytes& dicom) {
    return dicom.header(0x0008, 0x1140, "SQ", 0xFFFFFFFF)
        .header(0xFFFE, 0xE000, "", 4)
        .raw("abcd")
        .header(0xFFFE, 0xE0DD, "", 0)
        .element(0x0008, 0x0070, "LO", "SIEMENS ")
        .element(0x0018, 0x0050, "DS", "3.5 ")
        .element(0x0018, 0x0080, "DS", "1234567890")
        .element(0x0018, 0x0088, "DS", "4.25")
        .element(0x0018, 0x5100, "CS", "12345678901")
        .element(0x0008, 0x0060, "CS", "M") // the key needs an even offset
        .element(0x0020, 0x0013, "IS", "17")
        .word(0x0028, 0x0010, 320)
        .word(0x0028, 0x0011, 384)
        .element(0x0028, 0x0030, "DS", " 1.5\\2.5\r\n");
}

struct Parse {
    explicit Parse(const QByteArray& bytes)
        : result(parseDicomHeader(bytesOf(bytes), "a.dcm", header, order)) {}
    DicomHeader header;
    ByteOrder order = ByteOrder::Little;
    bool result;
};

TEST(DicomHeader, IsTheSameInEveryEncoding) {
    for (const bool meta : {true, false})
        for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big})
            for (const bool explicitVR : {true, false}) {
                SCOPED_TRACE(testing::Message() << meta << int(order) << explicitVR);
                ScriptedMessages messages;
                DicomBytes dicom(order, explicitVR);
                if (meta)
                    dicom.meta();
                withHeader(dicom).element(0x0029, 0x0010, "LO", "AB").pixels(std::vector<int>(64));
                const Parse parse(dicom.bytes);
                const DicomHeader& header = parse.header;
                EXPECT_TRUE(parse.result);
                EXPECT_EQ(parse.order, order);
                EXPECT_EQ(header.metaByteOrder, meta ? ByteOrder::Little : order);
                EXPECT_EQ(header.manufacturerText, "SIEMENS ");
                EXPECT_EQ(header.instanceNumber, 17);
                EXPECT_EQ(header.repetitionTimeText, "1234567890");
                EXPECT_EQ(header.patientPositionText, "<skipped>") << "longer than its limit";
                EXPECT_EQ((std::array{header.rows, header.columns}), (std::array{320, 384}));
                EXPECT_EQ((std::array{header.sliceThickness, header.sliceDistance,
                                      header.pixelSpacingFirst, header.pixelSpacingSecond}),
                          (std::array{3.5f, 4.25f, 1.5f, 2.5f}));
            }
}

TEST(DicomHeader, EndsAtLowByteAboveHex28) {
    for (const auto& [group, ends] : {std::pair{0x0129, true}, {0x0108, false}}) {
        ScriptedMessages messages;
        DicomHeader header;
        header.seriesNumber = 5; // from the file before
        ByteOrder order{};
        const QByteArray bytes = DicomBytes()
                                     .meta()
                                     .element(0x0028, 0x0030, "DS", "2.25")
                                     .element(uint16_t(group), 0x0070, "LO", "NO")
                                     .element(0x0020, 0x0011, "IS", "8 ")
                                     .pixels({1})
                                     .bytes;
        EXPECT_TRUE(parseDicomHeader(bytesOf(bytes), "", header, order));
        EXPECT_EQ(header.seriesNumber, ends ? 5 : 8) << group;
        EXPECT_EQ(header.pixelSpacingSecond, 2.25f) << "a lone spacing serves both directions";
    }
}

TEST(DicomHeader, EveryFailureHasItsMessage) {
    const auto meta = [] { return DicomBytes().meta(); };
    const QByteArray noMetaGroup = QByteArray(128, '\0') + "DICM" + DicomBytes().pixels({1}).bytes;
    constexpr auto warning = MessageLevel::Warning;
    constexpr auto critical = MessageLevel::Critical;
    const QString inconsistent =
        "CRITICAL ERROR: Inconsistent information in DICOM file at \"%1\" key (0028,00%2)!";
    const std::vector<std::tuple<QByteArray, MessageLevel, QString>> cases{
        {"", warning, "INFO: The file \"a.dcm\" appears not to be a Dicom file!"},
        {DicomBytes().pixels({1}).bytes, warning, "ERROR: Can not set file pointer in file !"},
        {noMetaGroup, warning,
         "ERROR: Could not find expected metaheader group (02,00) in DICOM file!"},
        {meta().element(0x0028, 0x0010, "US", "1234").pixels({1}).bytes, critical,
         inconsistent.arg("Rows", "10")},
        {meta().element(0x0028, 0x0011, "US", "1234").pixels({1}).bytes, critical,
         inconsistent.arg("Columns", "11")},
        {meta().header(0x0008, 0x1140, "SQ", 0xFFFFFFFF).pixels({1}).bytes, warning, pastEnd},
        // No element precedes a pixel element that is longer than a header value may be.
        {meta().pixels(std::vector<int>(525001)).bytes, warning, pastEnd}};
    for (const auto& [bytes, level, message] : cases) {
        ScriptedMessages messages;
        messages.expect(level, message);
        EXPECT_FALSE(Parse(bytes).result);
    }
}

} // namespace
