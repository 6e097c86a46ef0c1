// The text format of design matrices in both versions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix_rtc.h"

#include <gtest/gtest.h>

namespace {

const QString plainText = "FileVersion:     2\n"
                          "Type:            DesignMatrix\n"
                          "NrOfPredictors:  3\n"
                          "NrOfDataPoints:  2\n\n"
                          "\"Left hand\" \"\" \"Constant\"\n"
                          "0.250000 -1.000000 1.000000\n"
                          "-0.125000 12345.000000 1.000000\n";

RTCFile sample() {
    RTCFile file;
    file.names = QStringList{"Left hand", "", "Constant"};
    file.nrOfDataPoints = 2;
    file.columns = {{0.25f, -0.125f}, {-1, 12345}, {1, 1}};
    return file;
}

} // namespace

TEST(RTC, VersionTwoRoundTrip) {
    EXPECT_EQ(QString(rtcText(sample(), RTCNumbers::Plain)), plainText);
    EXPECT_TRUE(rtcText(sample(), RTCNumbers::Aligned)
                    .endsWith("    0.250000    -1.000000     1.000000\n"
                              "   -0.125000 12345.000000     1.000000\n"));
    RTCFile file;
    ASSERT_EQ(parseRTC(plainText, file), RTCParseResult::Ok);
    EXPECT_EQ(file.names, sample().names);
    EXPECT_EQ(file.columns, sample().columns);
}

TEST(RTC, VersionOneHoldsSeriesAfterSeries) {
    RTCFile file;
    const QString head = "Title: x y z\na: 1 b: 2 c: 3 d: 4 e: 5 f: 6\n";
    ASSERT_EQ(parseRTC("NrOfRTCs: 2\nNrOfValues: 3\n" + head + "1 2 3\n" + head + "4 5 6.5\n", file,
                       RTCScope::All, RTCTitle::Line),
              RTCParseResult::Ok);
    EXPECT_EQ(file.columns, (std::vector<std::vector<float>>{{1, 2, 3}, {4, 5, 6.5f}}));
}

TEST(RTC, RefusesWhatIsCutOrStatesTooMuch) {
    RTCFile file;
    for (qsizetype length = plainText.indexOf("12345"); length >= 0; --length)
        EXPECT_NE(parseRTC(plainText.left(length), file), RTCParseResult::Ok) << length;
    EXPECT_EQ(parseRTC("NrOfRTCs: 2147483647 NrOfValues: 2147483647", file),
              RTCParseResult::Incomplete);
    EXPECT_EQ(parseRTC("GIF89a", file), RTCParseResult::UnknownFormat);
}
