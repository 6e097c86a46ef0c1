// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/arriving_headers.h"
#include "run/protocol/prt_file.h"
#include "run/protocol/real_time_protocol.h"
#include "run/protocol/tdat_protocol.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

/// "from-to ..." of each condition, conditions separated by " | ".
QString intervals(const std::vector<ProtocolCondition>& conditions) {
    QStringList texts;
    for (const ProtocolCondition& condition : conditions) {
        QStringList bounds;
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
            bounds << QString("%1-%2").arg(condition.from[i]).arg(condition.to[i]);
        texts << bounds.join(' ');
    }
    return texts.join(" | ");
}

class ArrivingProtocol : public testing::Test {
protected:
    ArrivingProtocol() { messages.acceptAnything(); }

    void write(const QByteArray& bytes, QIODevice::OpenMode mode = QIODevice::Append) {
        writeFile(path, bytes, mode);
    }
    /// What is wrong with the header; nothing when it is good.
    QString startRTP(const QString& header) {
        const HeaderParsing parsing = parseRTPHeader(header, protocol, rtp);
        EXPECT_EQ(parsing.good, parsing.message.isEmpty());
        return parsing.message;
    }
    QString startTDAT(const QString& header = tdatHeader) {
        const HeaderParsing parsing = parseTDATHeader(header, protocol, tdat, settings);
        EXPECT_EQ(parsing.good, parsing.message.isEmpty());
        return parsing.message;
    }
    /// Applies lines separated by ";". Returns their messages.
    QStringList take(const QString& lines, bool isTDAT = false) {
        QStringList shown;
        for (const QString& line : lines.split(';'))
            shown << (isTDAT ? applyTDATLine(line, protocol, tdat)
                             : applyRTPLine(line, {20, 2000.0f}, protocol, rtp))
                         .message;
        shown.removeAll(QString());
        return shown;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath("arriving");
    ScriptedMessages messages;
    StimulationProtocol protocol;
    RealTimeProtocolState rtp;
    TDATState tdat;
    TDATSettings settings;
};

} // namespace

TEST_F(ArrivingProtocol, LinesAreTakenWholeAndOnce) {
    using Result = GrowingTextFile::ReadResult;
    GrowingTextFile lines;
    QString line;
    write("\xEF\xBB\xBFhead\nfirst\r\n \n\nsec");
    ASSERT_TRUE(lines.open(path, QIODevice::ReadOnly, GrowingTextFile::LineEnd::LineFeed));
    EXPECT_EQ(lines.head(false), "head\nfirst\r\n \n\nsec");
    EXPECT_EQ(lines.head(true), "head\nfirst\r\n \n\n");
    lines.skipHead(5);
    ASSERT_EQ(lines.readLine(line), Result::Line);
    EXPECT_EQ(line.trimmed(), "first");
    for (const char* piece : {"", "o", "nd"}) {
        write(piece);
        EXPECT_EQ(lines.readLine(line), Result::Nothing);
    }
    write("\nL\xE4rm\nL\xC3\xA4rm\n");
    for (const char16_t* expected : {u"second", u"L\u00E4rm", u"L\u00E4rm"}) {
        ASSERT_EQ(lines.readLine(line), Result::Line);
        EXPECT_EQ(line, QString::fromUtf16(expected));
    }
    // Longer than allowed, and in pieces.
    write(QByteArray(3 << 20, 'x'));
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(lines.readLine(line), Result::Nothing);
    write("x\n" + QByteArray(70000, 'y') + "\nlast\n");
    EXPECT_EQ(lines.readLine(line), Result::TooLong);
    EXPECT_EQ(lines.readLine(line), Result::TooLong);
    EXPECT_EQ(lines.readLine(line), Result::Line);
    EXPECT_EQ(line, "last");
    // Rewritten from its start: nothing is read twice. Deleted: nothing is read.
    write("", QIODevice::WriteOnly);
    write("head\nfirst\n");
    EXPECT_EQ(lines.readLine(line), Result::Nothing);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(lines.readLine(line), Result::Nothing);
    EXPECT_FALSE(lines.open("/dev/zero", QIODevice::ReadOnly, GrowingTextFile::LineEnd::LineFeed));
}

TEST_F(ArrivingProtocol, RTPHeaderFillsProtocolAndContrasts) {
    EXPECT_EQ(startRTP(rtpHeader), "");
    EXPECT_EQ(protocol.conditions[2].color, (RgbColor{0, 0, 255}));
    EXPECT_EQ(intervals(protocol.conditions), "1-100000 |  | ");
    EXPECT_TRUE(rtp.rtpHasBaseline && !rtp.baselineMisplaced && !rtp.rewardParadigm);
    ASSERT_EQ(rtp.contrasts.table.size(), 2u);
    EXPECT_EQ(rtp.contrasts.table[0].name, "Faces > Houses");
    EXPECT_EQ(rtp.contrasts.table[1].weights, (std::vector<int>{-2, 1, 1}));
    EXPECT_EQ(rtp.contrasts.table[1].selectionState, 0);
    EXPECT_EQ(rtp.contrasts.table[1].color, (RgbColor{4, 5, 6}));

    const QString plain = rtpHeaderWith("Auto2").replace("Volumes", "mS");
    EXPECT_EQ(startRTP(plain), "");
    EXPECT_EQ(intervals(protocol.conditions), "0-100000 |  | ");
    EXPECT_EQ(rtp.contrasts.source, ProtocolContrasts::Source::Generated);
    EXPECT_EQ(rtp.contrasts.level, 2);
    EXPECT_EQ(startRTP(QString(plain).replace("0 yes", "0 no").replace("Auto2", "VCO")), "");
    EXPECT_EQ(rtp.contrasts.source, ProtocolContrasts::Source::ContrastFile);
    EXPECT_TRUE(rtp.baselineMisplaced);
    EXPECT_EQ(startRTP(QString(plain).replace(" no", " yes")), "");
    EXPECT_EQ(intervals(protocol.conditions), " |  | ");
}

TEST_F(ArrivingProtocol, DamagedHeadersAreRefused) {
    for (qsizetype i = 1; i < rtpHeader.size(); ++i)
        if (rtpHeader[i - 1].isSpace() && !rtpHeader[i].isSpace()) {
            EXPECT_NE(startRTP(rtpHeader.left(i)), "") << i;
        }
    const QString manyConditions = QString("0 H CONDITION N c C 1 NO ").repeated(1001);
    const std::tuple<const char*, QString, QString> changes[] = {
        {"Volumes", "sec", "ERROR - Unexpected token for \"ResolutionOfTime\" found: \"sec\" !"},
        {"Conditions: 3", "Conditions: 2000000000", "the number of conditions is wrong."},
        {"Conditions: 3", "Conditions: 1001", "it has more than 1000 conditions."},
        {"Contrasts: 2", "Contrasts: 1001", "it has more than 1000 contrasts."},
        {"CONDITION NAME Cue", "CUE",
         "ERROR: Severe parsing error in ConditionTable: Expecting token \"CONDITION\"."},
        {"1000", "0",
         "SCANNERVOLUMEDURATION of .tdat file is not a duration in milliseconds: \"0\" !"},
        {"0 HEADER CONDITIONTABLEEND", manyConditions,
         "ConditionTable of .tdat file has more than 1000 entries."},
    };
    for (const auto& [before, after, message] : changes) {
        const bool isRTP = rtpHeader.contains(before);
        QString text = isRTP ? rtpHeader + QString(10000, 'x') : tdatHeader;
        text.replace(before, after);
        EXPECT_TRUE((isRTP ? startRTP(text) : startTDAT(text)).endsWith(message)) << before;
    }
}

TEST_F(ArrivingProtocol, RTPLinesOpenAndCloseIntervals) {
    const QString ms = QString(rtpHeader).replace("Volumes", "ms");
    const std::tuple<QString, QString, QString, int, int> cases[] = {
        {rtpHeader, "Scan Begin;1 0 0;4 1 0;6 2.5 0;8 0 0.5;11 0 0;14 0 0",
         "1-3 11-1011 | 4-7 | 8-10", 28000, 0},
        {rtpHeader, "1 0 0;4 1 0;8 0 0;scan  end", "1-3 8-20 | 4-7 | ", 42000, 0},
        {ms, "0 0 0;4000 1 1;8000.7 0 1;9000 0 0;SCAN END",
         "0-4000 9000-40000 | 4000-8000 | 4000-9000", 42000, 0},
        // Too few values, none, or invalid numbers: the line has no effect.
        {rtpHeader, "4 1;hello;5 1 nan;5 inf 0;5 1 1e30;99999999999 1 1;;5 0 1", "1-4 |  | 5-1005",
         10000, 7},
        {rtpHeader, "5 -1 0;6 1 0;7 -3 0 9 9", "1-5 7-1007 | 6-6 | ", 14000, 0},
        // Times at the limits of an integer.
        {rtpHeader, "-2147483647 1 0;2147483647 0 1",
         "1--2147483647 | -2147483647-2147483646 | 2147483647-2147483647", 2147483647, 0},
    };
    for (const auto& [header, lines, expected, coveredTime, incomplete] : cases) {
        SCOPED_TRACE(lines.toStdString());
        protocol.coveredTime = 0;
        EXPECT_EQ(startRTP(header), "");
        EXPECT_EQ(take(lines), QStringList(incomplete, "INTERNAL ERROR - Incomplete CSL!"));
        EXPECT_EQ(intervals(protocol.conditions), expected);
        EXPECT_EQ(protocol.coveredTime, coveredTime);
        EXPECT_EQ(rtp.rtpFinished, lines.contains("end", Qt::CaseInsensitive));
    }
    EXPECT_EQ(startRTP(rtpHeader), "");
    (void)take("1 0.5 2;2 0.9 0;3 0 0;4 0.7 0");
    EXPECT_EQ(rtp.rtpWeights, (std::vector<float>{0.7f, 2.0f}));
}

TEST_F(ArrivingProtocol, RTPFileEndsWithItsScan) {
    TDATProtocol log;
    EXPECT_FALSE(readTDATFile(path, "a.vco", protocol, log, settings));
    EXPECT_EQ(messages.shown().last(),
              "ERROR: Can not open .tdat file !\n\nSet the \"WatchFolder\" "
              "in the \"a.vco\" file and start again.\n");
    RealTimeProtocol realTime;
    EXPECT_FALSE(readRTPFile(folder.path(), protocol, realTime));
    EXPECT_EQ(messages.shown().last(), "ERROR: Can not open RTP file: \"" + folder.path() +
                                           "\" !\n\nCheck the \"WatchFolder\" and start again.\n");
    write(rtpHeader.toUtf8() + "\r\nSCAN BEGIN\r4 1 0\n\n" + QByteArray("broken\n").repeated(99) +
          "SCAN END\n9 0 1\n");
    ASSERT_TRUE(readRTPFile(path, protocol, realTime));
    const qsizetype told = messages.shown().size();
    while (readRTPUpdate({20, 2000.0f}, protocol, realTime).lineTaken)
        continue;
    EXPECT_EQ(messages.shown().size() - told, 5);
    EXPECT_EQ(intervals(protocol.conditions), "1-3 | 4-1004 | ");
    EXPECT_FALSE(realTime.lines.isOpen());
}

// That of version 5 is read by whole runs.
TEST_F(ArrivingProtocol, TDATHeaderOfVersionFourHasItsConditionsInTheOptions) {
    const QString options = "0 HEADER TDATFILEVERSION 4\n0 HEADER FMRIANALYSISOPTIONS "
                            "Faces:1,2,3;Cue:4,5,6;Gone\n";
    EXPECT_EQ(startTDAT(options + tdatHeader.section('\n', 6)), "");
    ASSERT_EQ(protocol.nrOfConditions(), 3);
    EXPECT_EQ(protocol.conditions[1].color, (RgbColor{1, 2, 3}));
}

TEST_F(ArrivingProtocol, TDATLinesOpenAndCloseIntervals) {
    const QString wrongName = "PARSING ERROR in TDAT file: Expected  BLOCK > FACES < ";
    const QString badLine = "WARNING: A line of the .tdat file lacks a value and is ignored, as "
                            "are all others like it:\n\nSCAN BLOCKBEGIN FACES";
    const std::tuple<QString, QString, int, QString> cases[] = {
        {"900 SCAN RUNBEGIN;1000 scan BlockBegin Rest;3000 SCAN BLOCKEND REST 1900;"
         "3000 SCAN BLOCKBEGIN FACES",
         "0-1900 | 2000-1002000 | ", 3000, ""},
        {"0 SCAN BLOCKBEGINEND FACES 5;10 SCAN BLOCKBEGIN CARS;20 SCAN BLOCKEND CARS 10",
         " | 0-5 | ", 20, ""},
        {"x 500 SCAN BLOCKBEGINEND HOUSES 700;1500 SCAN BLOCKBEGINEND FACES 10.5",
         " | 1000-1010 | 0-700", 1500, ""},
        // An event of a condition that is not a predictor still counts as the first one.
        {"500 SCAN BLOCKBEGIN CUE;600 SCAN BLOCKEND CUE 50;700 SCAN BLOCKBEGINEND REST 1",
         "200-201 |  | ", 700, ""},
        {"0 SCAN BLOCKBEGIN FACES;9 SCAN BLOCKEND HOUSES 3", " | 0-1000000 | ", 9, wrongName},
        {"SCAN BLOCKBEGIN FACES;x SCAN BLOCKBEGIN FACES;5 SCAN BLOCKBEGIN;6 SCAN BLOCKBEGINEND "
         "FACES;7 SCAN BLOCKBEGINEND FACES nan;1e99 SCAN BLOCKBEGIN FACES",
         " |  | ", 7, badLine},
        {"2147483647 SCAN BLOCKBEGIN FACES;-2147483647 SCAN BLOCKBEGINEND REST -2147483647",
         "-2147483647--2147483647 | 0-1000000 | ", 2147483647, ""},
    };
    for (const auto& [lines, expected, coveredTime, shown] : cases) {
        SCOPED_TRACE(lines.toStdString());
        protocol.coveredTime = 0;
        ASSERT_EQ(startTDAT(), "");
        EXPECT_EQ(take(lines, true).join('|'), shown);
        EXPECT_EQ(intervals(protocol.conditions), expected);
        EXPECT_EQ(protocol.coveredTime, coveredTime);
    }
}

TEST_F(ArrivingProtocol, TDATResponsesAreKept) {
    ASSERT_EQ(startTDAT(), "");
    const QString lines = "100 SCAN BLOCKBEGIN FACES;150 SCAN RESPONSE key 420 1 0 b23456789abc;"
                          "250 SCAN RESPONSE key 0 0 1;350 SCAN RESPONSE key 5";
    EXPECT_EQ(take(lines, true).size(), 1); // the last one lacks values
    EXPECT_TRUE(
        QString::fromUtf8(prtText(protocol))
            .section("ResponseConditions:", 1)
            .simplified()
            .startsWith("1 NrOfResponseEvents: 2 From: 50 To: 51 TimeOfResponse: 50 RT: 420 "
                        "Buttons: \"B23456789A\" Omission: 0 Accuracy: 1 From: 150 To: 151 "
                        "TimeOfResponse: 150 RT: 0 Buttons: \"\" Omission: 1 Accuracy: 0"));
}
