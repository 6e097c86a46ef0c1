// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoding_log.h"

namespace {

TEST(DecodingLog, HasAHeadingForEachLine) {
    LetterDecoding decoding;
    decoding.letter = 4;
    decoding.beta[0][5] = -1.23457e-05f; // wider than its column
    decoding.beta[1][5] = -1.23457e-06f;
    decoding.best[0] = {u'C', 0.75f, {0, 5}};
    DecoderSettings settings;
    const QString both = decodingLog(settings, decoding);
    EXPECT_TRUE(
        both.startsWith("Letter 5:\nRaw correlation values for ROI 1 with 9 ref functions: \n"
                        "         0         0         0         0         0"));
    EXPECT_TRUE(both.contains("Raw beta values for ROI 6 using 9 ref functions: \n"
                              " -1.23457e-05 -1.23457e-06         0"));
    EXPECT_TRUE(both.endsWith("\nRank 1: C (0.75)\nRank 2: - (-1)\nRank 3: - (-1)\n\n"));
    QStringList headings;
    for (const QString& line : both.split(u'\n'))
        if (!line.startsWith(u' '))
            headings << line;
    QStringList expected{"Letter 5:"};
    const auto expectHeadings = [&expected](const QString& heading, int count) {
        for (int i = 1; i <= count; ++i)
            expected << heading.arg(i);
    };
    expectHeadings("Raw correlation values for ROI %1 with 9 ref functions: ", 6);
    expectHeadings("Raw beta values for ROI %1 using 9 ref functions: ", 6);
    expectHeadings("Normalized beta values for ROI %1 using 9 ref functions: ", 6);
    expectHeadings("Result of shape matching for task %1 for 9 ref functions:", 3);
    expectHeadings("Result of beta pattern matching for task %1 for 9 ref functions:", 3);
    expected << "Multiplication of corr and beta score is shown in middle of plots";
    expectHeadings("Result of multiplication for task %1 for 9 ref functions:", 3);
    expected << "Weighted sum (tau = 0.5) of corr and beta score is shown in middle of plots";
    expectHeadings("Result of weighted sum for task %1 for 9 ref functions:", 3);
    EXPECT_EQ(headings.mid(0, expected.size()), expected);
    EXPECT_EQ(headings.size(), expected.size() + 5);
}

} // namespace
