// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_header.h"

#include "dicom_bytes.h"
#include "intake/dicom_refusal.h"
#include "intake/slice_geometry.h"
#include "support/scripted_messages.h"

namespace {

constexpr const char* pastEnd =
    "ERROR: Read past the end of file, can not read file as regular DICOM!";

DicomBytes& withHeader(DicomBytes& dicom) {
    return dicom.element(0x0008, 0x0070, "LO", "SIEMENS ")
        .element(0x0018, 0x0050, "DS", "3.5 ")
        .element(0x0018, 0x0088, "DS", "4.25")
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
                withHeader(dicom)
                    .element(0x0029, 0x0010, "LO", "AB")
                    .pixels(std::vector<uint16_t>(64));
                const Parse parse(dicom.bytes);
                EXPECT_TRUE(parse.result);
                EXPECT_EQ(parse.order, order);
                EXPECT_EQ(parse.header.dataByteOrder, order);
                EXPECT_EQ(parse.header.metaByteOrder, meta ? ByteOrder::Little : order);
                EXPECT_EQ(parse.header.explicitVR, explicitVR);
                EXPECT_EQ(parse.header.manufacturerText, "SIEMENS ");
                EXPECT_EQ(parse.header.sliceThickness, 3.5f);
                EXPECT_EQ(parse.header.sliceDistance, 4.25f);
                EXPECT_EQ(parse.header.instanceNumber, 17);
                EXPECT_EQ(parse.header.rows, 320);
                EXPECT_EQ(parse.header.columns, 384);
                EXPECT_EQ(parse.header.pixelSpacingFirst, 1.5f);
                EXPECT_EQ(parse.header.pixelSpacingSecond, 2.5f);
            }
}

TEST(DicomHeader, TextOfItsLimitIsKept) {
    ScriptedMessages messages;
    const Parse parse(DicomBytes()
                          .meta()
                          .element(0x0018, 0x0080, "DS", "1234567890")
                          .element(0x0018, 0x5100, "CS", "12345678901")
                          .element(0x0008, 0x0060, "CS", "M") // the key needs an even offset
                          .element(0x0028, 0x0030, "DS", "2.25")
                          .pixels({1})
                          .bytes);
    EXPECT_TRUE(parse.result);
    EXPECT_EQ(parse.header.repetitionTimeText, "1234567890");
    EXPECT_EQ(parse.header.patientPositionText, "<skipped>");
    EXPECT_EQ(parse.header.pixelSpacingFirst, 2.25f);
    EXPECT_EQ(parse.header.pixelSpacingSecond, 2.25f) << "a lone spacing serves both directions";
}

TEST(DicomHeader, EndsAtLowByteAboveHex28) {
    struct Case {
        uint16_t group;
        bool ends;
    };
    for (const auto& [group, ends] :
         {Case{0x0040, true}, {0x0129, true}, {0x0108, false}, {0x0028, false}}) {
        ScriptedMessages messages;
        DicomHeader header;
        header.seriesNumber = 5; // from the file before
        ByteOrder order{};
        const QByteArray bytes = DicomBytes()
                                     .meta()
                                     .element(group, 0x0070, "LO", "NO")
                                     .element(0x0020, 0x0011, "IS", "8 ")
                                     .pixels({1})
                                     .bytes;
        EXPECT_TRUE(parseDicomHeader(bytesOf(bytes), "", header, order));
        EXPECT_EQ(header.seriesNumber, ends ? 5 : 8) << group;
        EXPECT_TRUE(header.manufacturerText.empty());
    }
}

TEST(DicomHeader, PassesSequencesOfUndefinedLength) {
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        ScriptedMessages messages;
        DicomBytes dicom(order, false);
        dicom.header(0x0008, 0x1140, "SQ", 0xFFFFFFFF).header(0xFFFE, 0xE000, "", 4).raw("abcd");
        dicom.header(0xFFFE, 0xE0DD, "", 0).element(0x0020, 0x0012, "IS", "9 ").pixels({1});
        const Parse parse(QByteArray(dicom.bytes).append(QByteArray(128, '\0')));
        EXPECT_TRUE(parse.result);
        EXPECT_EQ(parse.header.acquisitionNumber, 9);
    }
}

TEST(DicomHeader, EveryFailureHasItsMessage) {
    const auto meta = [] { return DicomBytes().meta(); };
    const QByteArray noMetaGroup = QByteArray(128, '\0') + "DICM" + DicomBytes().pixels({1}).bytes;
    struct Case {
        QByteArray bytes;
        MessageLevel level;
        const char* message;
    };
    const std::vector<Case> cases{
        {"", MessageLevel::Warning, "INFO: The file \"a.dcm\" appears not to be a Dicom file!"},
        {DicomBytes().pixels({1}).bytes, MessageLevel::Warning,
         "ERROR: Can not set file pointer in file !"},
        {noMetaGroup, MessageLevel::Warning,
         "ERROR: Could not find expected metaheader group (02,00) in DICOM file!"},
        {meta().element(0x0028, 0x0010, "US", "1234").pixels({1}).bytes, MessageLevel::Critical,
         "CRITICAL ERROR: Inconsistent information in DICOM file at \"Rows\" key (0028,0010)!"},
        {meta().element(0x0028, 0x0011, "US", "1234").pixels({1}).bytes, MessageLevel::Critical,
         "CRITICAL ERROR: Inconsistent information in DICOM file at \"Columns\" key (0028,0011)!"},
        {meta().element(0x0028, 0x0100, "US", "").pixels({1}).bytes, MessageLevel::Critical,
         "CRITICAL ERROR: Inconsistent information in DICOM file at \"Columns\" key (0028,0011)!"},
        {meta().header(0x0009, 0x0010, "OB", 0xFFFFFFFE).pixels({1}).bytes, MessageLevel::Warning,
         pastEnd},
        {meta().header(0x0008, 0x0070, "LO", 40).pixels({1}).bytes, MessageLevel::Warning, pastEnd},
        {meta().header(0x0008, 0x1140, "SQ", 0xFFFFFFFF).pixels({1}).bytes, MessageLevel::Warning,
         pastEnd},
        // Nothing stands before a pixel element that is longer than a header value may be.
        {meta().pixels(std::vector<uint16_t>(525001)).bytes, MessageLevel::Warning, pastEnd}};
    for (const auto& [bytes, level, message] : cases) {
        ScriptedMessages messages;
        messages.expect(level, message);
        EXPECT_FALSE(Parse(bytes).result);
    }
    ScriptedMessages messages;
    EXPECT_TRUE(Parse(meta().pixels(std::vector<uint16_t>(525000)).bytes).result);
}

TEST(DicomHeader, LastKeyBeforeTheLimitSettlesTheEncoding) {
    // A big-endian key in a value of a little-endian file: only a real key behind it helps.
    const QByteArray trap = DicomBytes(ByteOrder::Big).pixels({}).bytes;
    struct Case {
        int fill; // even number of bytes between the trap and the real key
        bool realKeySeen;
    };
    // Tested before the key: preamble and meta-header, trap value and this much fill.
    const auto fileWith = [&](int fill) {
        return DicomBytes()
            .meta()
            .element(0x0009, 0x0010, "OB", trap + QByteArray(fill, 'x'))
            .pixels({1})
            .bytes;
    };
    const int keyOffset = int(fileWith(0).size()) - 14;
    const int counted = keyOffset - 6; // the trap's key and "OW" are not counted
    for (const auto& [fill, realKeySeen] :
         {Case{0, true}, {200000 - counted, true}, {200002 - counted, false}}) {
        ScriptedMessages messages;
        messages.acceptAnything();
        EXPECT_EQ(Parse(fileWith(fill)).order, realKeySeen ? ByteOrder::Little : ByteOrder::Big);
    }
}

TEST(DicomIdentifiers, NeedAllFourAndOneElementMore) {
    const auto four = [] {
        return DicomBytes()
            .meta()
            .element(0x0010, 0x0010, "PN", "Doe^Jane")
            .element(0x0020, 0x0011, "IS", "3 ")
            .element(0x0020, 0x0012, "IS", "4 ")
            .element(0x0020, 0x0013, "IS", "5 ");
    };
    ScriptedMessages messages;
    DicomIdentifiers found;
    EXPECT_TRUE(parseDicomIdentifiers(bytesOf(four().pixels({1}).bytes), "a.dcm", found));
    EXPECT_EQ(found.series, 3);
    EXPECT_EQ(found.acquisition, 4);
    EXPECT_EQ(found.instance, 5);
    EXPECT_EQ(found.patientName, "Doe^Jane");
    const QByteArray nameless = DicomBytes().meta().pixels({1}).bytes;
    EXPECT_FALSE(parseDicomIdentifiers(bytesOf(nameless), "a.dcm", found));
    EXPECT_EQ(found.series, -1) << "nothing is kept from the file before";
    EXPECT_FALSE(parseDicomIdentifiers(bytesOf(QByteArray("\x7F\xE0\x00\x10", 4)), "", found));
    messages.expect(MessageLevel::Warning, "ERROR: File \"a.dcm\" is not a DICOM file!");
    EXPECT_FALSE(parseDicomIdentifiers({}, "a.dcm", found));
    messages.expect(MessageLevel::Warning, "Error: File \"/none.dcm\" not found!");
    EXPECT_FALSE(readDicomIdentifiers("/none.dcm", found));
    DicomHeader header;
    ByteOrder order{};
    messages.expect(MessageLevel::Warning, "ERROR - Can not open DICOM file: \"/none.dcm\" !");
    EXPECT_FALSE(readDicomHeader("/none.dcm", header, order));
}

TEST(SliceGeometry, NeedsAllNumbers) {
    FMRPositionInfo position;
    EXPECT_TRUE(parseImagePosition(" -1.5\\2\\3e1 ", SliceEnd::Last, position));
    EXPECT_EQ(position.sliceCenterLast, (Vector3{-1.5f, 2.0f, 30.0f}));
    EXPECT_EQ(position.sliceCenterFirst, Vector3{});
    EXPECT_FALSE(parseImagePosition("1\\2", SliceEnd::First, position));
    EXPECT_FALSE(parseImagePosition("1\\2\\x", SliceEnd::First, position));
    EXPECT_FALSE(parseImageOrientation("<skipped>", position));
    EXPECT_TRUE(parseImageOrientation("1\\0\\0\\0\\0.8\\-0.6", position));
    EXPECT_EQ(position.columnDirection, (Vector3{0.0f, 0.8f, -0.6f}));
}

TEST(SliceGeometry, MosaicCentreLiesHalfAMosaicFromItsCorner) {
    DicomHeader header;
    header.columns = 384;
    header.rows = 320;
    header.manufacturerText = "SIEMENS ";
    header.imagePositionText = "-100\\-200\\10";
    FMRProject project;
    project.NrOfSlices = 25;
    project.pixelSizeX = 3.0f;
    project.pixelSizeY = 2.0f;
    project.sliceThickness = 4.0f;
    project.sliceGap = 1.0f;
    project.position.rowDirection = {1, 0, 0};
    project.position.columnDirection = {0, 0.6f, 0.8f};
    ASSERT_TRUE(computeMosaicGeometry(header, project));
    // Normal (0, -0.8, 0.6); 384 * 3 / 2 = 576 along rows, 320 along columns, 25 * 5 to the last.
    const Vector3 first{476, -8, 266};
    const Vector3 last{476, -108, 341};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(project.position.sliceCenterFirst[i], first[i], 1e-4);
        EXPECT_NEAR(project.position.sliceCenterLast[i], last[i], 1e-4);
    }
    header.manufacturerText = "Other";
    EXPECT_FALSE(computeMosaicGeometry(header, project));
}

TEST(DicomRefusal, NamesWhatIsWrong) {
    const auto refusal = [](const DicomBytes& dicom) {
        return refusalOf(bytesOf(dicom.bytes), "a.dcm");
    };
    EXPECT_EQ(refusal(DicomBytes().meta().pixels({1})), "");
    EXPECT_EQ(refusal(DicomBytes(ByteOrder::Big).meta("1.2.840.10008.1.2.2").pixels({1})), "");
    EXPECT_EQ(refusal(DicomBytes().raw("no DICOM at all")), "");
    EXPECT_EQ(
        refusal(DicomBytes().meta("1.2.840.10008.1.2.5")),
        "ERROR: File \"a.dcm\" is compressed (transfer syntax 1.2.840.10008.1.2.5); export it "
        "uncompressed !");
    EXPECT_TRUE(refusal(DicomBytes(ByteOrder::Little, false)
                            .meta("1.2.840.10008.1.2")
                            .element(0x0028, 0x0008, "IS", "2 ")
                            .pixels({1}))
                    .contains("multi-frame"));
}

} // namespace
