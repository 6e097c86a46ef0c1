// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_private_header.h"

#include "dicom_bytes.h"
#include "support/scripted_messages.h"

namespace {

const QByteArray times = "alTR[0] = 2000500\nalTE[0] = 30499\r\n";
const QByteArray slices = "sSliceArray.asSlice[0].sPosition.dSag = 1.5\n"
                          "sSliceArray.asSlice[0].sPosition.dTra\t = \t-3\n"
                          "sSliceArray.asSlice[1].sPosition.dCor = 7\n"
                          "sSliceArray.asSlice[1].sPosition.dTra = 4\n"
                          "sSliceArray.asSlice[2].sPosition.dTra = 5\n";

FMRProject parsed(const QByteArray& text, bool positions = true, int nrOfSlices = 3) {
    FMRProject project;
    project.NrOfSlices = nrOfSlices;
    project.position.sliceCenterLast = {9, 9, 9};
    EXPECT_EQ(parseSiemensProtocol(bytesOf(text), project), positions);
    return project;
}

TEST(SiemensProtocol, RoundsTimesAndKeepsFirstAndLastPosition) {
    const FMRProject project = parsed(times + slices);
    EXPECT_EQ(project.TR, 2001.0f);
    EXPECT_EQ(project.InterSliceTime, 667.0f);
    EXPECT_EQ(project.TE, 30.0f);
    EXPECT_TRUE(project.TimeResolutionVerified);
    // Axes are counted one by one: the only coordinate of an axis belongs to the first slice.
    EXPECT_EQ(project.position.sliceCenterFirst, (Vector3{1.5f, 7, -3}));
    EXPECT_EQ(project.position.sliceCenterLast, (Vector3{0, 0, 5}));
}

TEST(SiemensProtocol, SliceOrderIsHexadecimalBehindPositionsOrDecimalBeforeThem) {
    const std::tuple<const char*, int, int> cases[] = {
        {" = 0x1\n", 3, 1},      {"\t = \t0x2\r\n", 3, 2}, {" = 0x4\n", 3, 3}, {" = 0x4\n", 4, 5},
        {"\t = \t2 \t\n", 3, 2}, {"\t = \t8\n", 3, 0},     {" = \n", 3, 0}}; // 0: not verified
    for (const auto& [value, nrOfSlices, code] : cases) {
        const QByteArray mode = QByteArray("sSliceArray.ucMode") + value;
        for (const QByteArray& text : {slices + mode, mode + times + slices}) {
            const FMRProject project = parsed(text, true, nrOfSlices);
            EXPECT_EQ(project.SliceAcquisitionOrder, code) << value;
            EXPECT_EQ(project.SliceAcquisitionOrderVerified, code != 0) << value;
        }
    }
}

// A second block, or what looks like one in the samples, is ignored.
TEST(SiemensProtocol, ReadingEndsWithOrderOrBlock) {
    const QByteArray mode = "sSliceArray.ucMode = 2\n";
    const QByteArray other = "sSliceArray.asSlice[9].sPosition.dTra = 99\n";
    for (const QByteArray& text :
         {times + slices + mode + other, mode + times + slices + "### ASCCONV END ###\n" + other}) {
        const FMRProject project = parsed(text);
        EXPECT_EQ(project.position.sliceCenterLast[2], 5);
        EXPECT_EQ(project.SliceAcquisitionOrder, 2);
    }
    // Without TR or order it goes on.
    for (const QByteArray& text :
         {slices + mode + other, times + slices + "### ASCCONV END ###\n" + other})
        EXPECT_EQ(parsed(text).position.sliceCenterLast[2], 99);
}

// The orientation of the list counts, which lies along Tra here; the key stands before the slices
// or behind the order.
TEST(SiemensProtocol, ImagesNumberedFromTheLastSliceExchangeTheCentres) {
    const QByteArray mode = "sSliceArray.ucMode = 0x1\n";
    const std::pair<const char*, float> cases[] = {
        {"Tra\t = \t1\n", 5}, {"Tra = 0x1\n", 5}, {"Tra = 0x0\n", -3}, {"Cor = 0x1\n", -3}};
    for (const auto& [numbering, first] : cases) {
        const QByteArray line = QByteArray("sSliceArray.ucImageNumb") + numbering;
        EXPECT_EQ(parsed(times + slices + mode + line).position.sliceCenterFirst[2], first)
            << line.data();
        EXPECT_EQ(parsed(mode + line + times + slices).position.sliceCenterFirst[2], first)
            << line.data();
    }
}

TEST(SiemensProtocol, ATRThatNoScannerHasLeavesThatOfTheSettings) {
    const std::pair<const char*, int> cases[] = {
        {"0", 2000},         {"nan", 2000}, {"", 2000},           {"499", 2000},
        {"100001000", 2000}, {"500", 1},    {"100000000", 100000}};
    for (const auto& [value, expected] : cases) {
        ScriptedMessages messages;
        if (expected == 2000)
            messages.expectWarning(QString("WARNING: The scanner's protocol states "
                                           "a TR of \"%1\" microseconds; the TR "
                                           "of the settings file, 2000 ms, stays.")
                                       .arg(value));
        const FMRProject project = parsed(QByteArray("alTR[0] = ") + value + '\n' + slices);
        EXPECT_EQ(project.TR, float(expected)) << value;
        EXPECT_EQ(project.TimeResolutionVerified, expected != 2000) << value;
        EXPECT_EQ(project.InterSliceTime,
                  expected == 2000 ? 80.0f : std::floor(float(expected) / 3))
            << value;
    }
}

TEST(SiemensProtocol, IsReadInPieces) {
    // A line is read in pieces of 254 bytes: a key across two pieces is not met.
    parsed(QByteArray(240, 'x') + slices, true);
    EXPECT_FALSE(parsed(QByteArray(250, 'x') + times, false).TimeResolutionVerified);
    ScriptedMessages messages;
    FMRProject project;
    messages.expectWarning("ERROR: File \"/none\" not found !");
    EXPECT_FALSE(readSiemensProtocol("/none", project));
}

} // namespace
