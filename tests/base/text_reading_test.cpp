// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text_reading.h"

#include <gtest/gtest.h>

TEST(QuotedString, StopsAtItsMaximumAndLeavesTheRest) {
    TokenStream stream("\"" + QString(300, 'a') + "\" next");
    QString text;
    ASSERT_TRUE(readDelimitedString('"', text, stream));
    EXPECT_EQ(text.size(), 256);
    EXPECT_EQ(stream.word(), QString(44, 'a') + "\"");
}

TEST(QuotedString, InLineFormFailsAtALineEnd) {
    QString text;
    TokenStream acrossLines("\n\"name\"");
    EXPECT_FALSE(readDelimitedStringInLine('"', text, acrossLines));
    TokenStream sameLine("  \"name\"");
    ASSERT_TRUE(readDelimitedStringInLine('"', text, sameLine));
    EXPECT_EQ(text, "name");
}

TEST(TokenStream, TakesTheLongestNumericBeginning) {
    struct Case {
        const char* text;
        double value;
        bool failed;
    };
    const Case cases[] = {{"2000.5", 2000.5, false}, {"1e3", 1000.0, false}, {"12abc", 12.0, false},
                          {"abc", 0.0, true},        {"", 0.0, true},        {"nan", 0.0, true},
                          {"+5", 5.0, false},        {"1e999", 0.0, true},   {"+-5", 0.0, true}};
    for (const Case& c : cases) {
        TokenStream stream(c.text);
        EXPECT_DOUBLE_EQ(stream.real(), c.value) << c.text;
        EXPECT_EQ(stream.failed(), c.failed) << c.text;
    }
    TokenStream tooLarge("99999999999");
    EXPECT_EQ(tooLarge.integer(), 0);
    EXPECT_TRUE(tooLarge.failed());
}

TEST(TokensAgree, PassesOverCaseAndAMissingColon) {
    EXPECT_TRUE(tokensAgree("FILEVERSION", "FileVersion:"));
    EXPECT_TRUE(tokensAgree("fileversion:", "FileVersion:"));
    EXPECT_FALSE(tokensAgree("FileVersion:", "FileVersion"));
}
