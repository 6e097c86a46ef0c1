// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_protocol.h"

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

TEST(SiemensProtocol, SliceOrderStandsBehindPositions) {
    for (const auto& [value, nrOfSlices, code] : {std::tuple{" = 0x1\n", 3, 1},
                                                  {"\t = \t0x2\r\n", 3, 2},
                                                  {" = 0x4\n", 3, 3},
                                                  {" = 0x4\n", 4, 5},
                                                  {" = 4\n", 3, 0}}) { // not verified
        const FMRProject project = parsed(slices + "sSliceArray.ucMode" + value, true, nrOfSlices);
        EXPECT_EQ(project.SliceAcquisitionOrder, code) << value;
        EXPECT_EQ(project.SliceAcquisitionOrderVerified, code != 0) << value;
    }
    EXPECT_FALSE(parsed("sSliceArray.ucMode = 0x1\n" + slices).SliceAcquisitionOrderVerified);
}

TEST(SiemensProtocol, IsReadInPieces) {
    // A line is read in pieces of 254 bytes: a key across two pieces is not met.
    parsed(QByteArray(240, 'x') + slices, true);
    EXPECT_FALSE(parsed(QByteArray(250, 'x') + times, false).TimeResolutionVerified);
    ScriptedMessages messages;
    FMRProject project;
    messages.expect(MessageLevel::Warning, "ERROR: File \"/none\" not found !");
    EXPECT_FALSE(readSiemensProtocol("/none", project));
}

} // namespace
