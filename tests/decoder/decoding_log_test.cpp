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
    const std::pair<QString, int> headings[] = {
        {"Letter 5:", 1},
        {"Raw correlation values for ROI %1 with 9 ref functions: ", 6},
        {"Raw beta values for ROI %1 using 9 ref functions: ", 6},
        {"Normalized beta values for ROI %1 using 9 ref functions: ", 6},
        {"Result of shape matching for task %1 for 9 ref functions:", 3},
        {"Result of beta pattern matching for task %1 for 9 ref functions:", 3},
        {"Multiplication of corr and beta score is shown in middle of plots", 1},
        {"Result of multiplication for task %1 for 9 ref functions:", 3},
        {"Weighted sum (tau = 0.5) of corr and beta score is shown in middle of plots", 1},
        {"Result of weighted sum for task %1 for 9 ref functions:", 3}};
    QStringList expected;
    for (const auto& [heading, count] : headings)
        for (int i = 1; i <= count; ++i)
            expected << QString(heading).replace("%1", QString::number(i));
    QStringList found = both.split(u'\n');
    found.removeIf([](const QString& line) { return line.startsWith(u' '); });
    EXPECT_EQ(found.mid(0, expected.size()), expected);
    EXPECT_EQ(found.size(), expected.size() + 5);
}

} // namespace
