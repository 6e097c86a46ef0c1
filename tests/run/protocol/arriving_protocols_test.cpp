// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/arriving_headers.h"
#include "run/protocol/real_time_protocol.h"
#include "run/protocol/tdat_protocol.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>

namespace {

/// "from-to ..." of each condition, conditions parted by " | ".
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
        QFile file(path);
        ASSERT_TRUE(file.open(mode));
        file.write(bytes);
    }
    void startRTP(const QString& header) {
        const HeaderParsing parsing = parseRTPHeader(header, protocol, rtp);
        EXPECT_TRUE(parsing.good) << parsing.message.toStdString();
    }
    /// Lines parted by ";". The messages that they led to.
    QStringList take(const QString& lines, bool isTDAT = false) {
        QStringList shown;
        for (const QString& line : lines.split(';'))
            shown << (isTDAT ? takeTDATLine(line, protocol, tdat)
                             : takeRTPLine(line, {20, 2000.0f}, protocol, rtp))
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
    using Taken = ArrivingLines::Taken;
    ArrivingLines lines;
    QString line;
    write("\xEF\xBB\xBFhead\nfirst\r\n \n\nsec");
    ASSERT_TRUE(lines.open(path, QIODevice::ReadOnly, ArrivingLines::LineEnd::LineFeed));
    EXPECT_EQ(lines.head(false), "head\nfirst\r\n \n\nsec");
    EXPECT_EQ(lines.head(true), "head\nfirst\r\n \n\n");
    lines.skipHead(5);
    ASSERT_EQ(lines.take(line), Taken::Line);
    EXPECT_EQ(line.trimmed(), "first");
    for (const char* piece : {"", "o", "nd"}) {
        write(piece);
        EXPECT_EQ(lines.take(line), Taken::Nothing);
    }
    write("\nL\xE4rm\nL\xC3\xA4rm\n");
    for (const char16_t* expected : {u"second", u"L\u00E4rm", u"L\u00E4rm"}) {
        ASSERT_EQ(lines.take(line), Taken::Line);
        EXPECT_EQ(line, QString::fromUtf16(expected));
    }
    // Longer than can be meant, and in pieces.
    write(QByteArray(3 << 20, 'x'));
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(lines.take(line), Taken::Nothing);
    write("x\n" + QByteArray(70000, 'y') + "\nlast\n");
    EXPECT_EQ(lines.take(line), Taken::TooLong);
    EXPECT_EQ(lines.take(line), Taken::TooLong);
    EXPECT_EQ(lines.take(line), Taken::Line);
    EXPECT_EQ(line, "last");
    // Rewritten from its start: nothing comes twice. Gone: nothing comes.
    write("", QIODevice::WriteOnly);
    write("head\nfirst\n");
    EXPECT_EQ(lines.take(line), Taken::Nothing);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(lines.take(line), Taken::Nothing);
    EXPECT_FALSE(lines.open(folder.path(), QIODevice::ReadOnly, ArrivingLines::LineEnd::LineFeed));
    EXPECT_FALSE(lines.open("/dev/zero", QIODevice::ReadOnly, ArrivingLines::LineEnd::LineFeed));
}

TEST_F(ArrivingProtocol, RTPHeaderFillsProtocolAndContrasts) {
    startRTP(rtpHeader);
    EXPECT_EQ(protocol.conditions[0].name, "Rest ing");
    EXPECT_EQ(protocol.conditions[2].color, (RgbColor{0, 0, 255}));
    EXPECT_EQ(intervals(protocol.conditions), "1-100000 |  | ");
    EXPECT_EQ(protocol.timeCourseColor, (RgbColor{13, 14, 15}));
    EXPECT_EQ(protocol.timeCourseThick, 4);
    EXPECT_TRUE(rtp.rtpHasBaseline && !rtp.baselineMisplaced && !rtp.rewardParadigm);
    EXPECT_EQ(rtp.rtpWeights.size(), 2u);
    ASSERT_EQ(rtp.contrasts.table.size(), 2u);
    EXPECT_EQ(rtp.contrasts.table[0].name, "Faces > Houses");
    EXPECT_EQ(rtp.contrasts.table[0].weights, (std::vector<int>{0, 1, -1}));
    EXPECT_EQ(rtp.contrasts.table[1].weights, (std::vector<int>{-2, 1, 1}));
    EXPECT_EQ(rtp.contrasts.table[1].selectionState, 0);
    EXPECT_EQ(rtp.contrasts.table[1].color, (RgbColor{4, 5, 6}));

    const QString plain = rtpHeaderWith("Auto2").replace("Volumes", "mS");
    startRTP(plain);
    EXPECT_EQ(intervals(protocol.conditions), "0-100000 |  | ");
    EXPECT_EQ(rtp.contrasts.source, ProtocolContrasts::Source::Generated);
    EXPECT_EQ(rtp.contrasts.level, 2);
    startRTP(QString(plain).replace("Auto2", "VCO").replace("Faces\" 255 0 0 yes", "A\" 1 1 1 no"));
    EXPECT_EQ(rtp.contrasts.source, ProtocolContrasts::Source::ContrastFile);
    EXPECT_TRUE(rtp.baselineMisplaced);
    startRTP(QString(plain).replace(" no", " yes"));
    EXPECT_EQ(intervals(protocol.conditions), " |  | ");
}

TEST_F(ArrivingProtocol, DamagedRTPHeadersAreRefused) {
    std::vector<QString> texts = {
        "", QString(rtpHeader).replace("NrOfConditions: 3", "NrOfConditions: 2000000000"),
        QString(rtpHeader).replace("NrOfConditions: 3", "NrOfConditions: -1"),
        QString(rtpHeader).replace("Contrasts: 2", "Contrasts: 99999"),
        QString(rtpHeader).replace("Contrasts: 2", "Contrasts: many")};
    for (qsizetype i = 1; i < rtpHeader.size(); ++i)
        if (rtpHeader[i - 1].isSpace() && !rtpHeader[i].isSpace())
            texts.push_back(rtpHeader.left(i));
    for (const QString& text : texts) {
        const HeaderParsing parsing = parseRTPHeader(text, protocol, rtp);
        EXPECT_FALSE(parsing.good || parsing.message.isEmpty()) << text.toStdString();
    }
    EXPECT_EQ(parseRTPHeader(QString(rtpHeader).replace("Volumes", "sec"), protocol, rtp).message,
              "ERROR - Unexpected token for \"ResolutionOfTime\" found: \"sec\" !");
}

TEST_F(ArrivingProtocol, RTPLinesOpenAndCloseIntervals) {
    const QString ms = QString(rtpHeader).replace("Volumes", "ms");
    const QString noBaseline = QString(rtpHeader).replace(" no\n", " yes\n");
    const struct {
        QString header, lines, expected;
        int coveredTime, incomplete;
    } cases[] = {
        {rtpHeader, "Scan Begin;1 0 0;4 1 0;6 2.5 0;8 0 0.5;11 0 0;14 0 0",
         "1-3 11-1011 | 4-7 | 8-10", 28000, 0},
        {rtpHeader, "1 0 0;4 1 0;8 0 0;scan  end", "1-3 8-20 | 4-7 | ", 42000, 0},
        {rtpHeader, "4 1 0;SCAN END", "1-3 | 4-1004 | ", 42000, 0},
        {ms, "0 0 0;4000 1 1;8000.7 0 1;9000 0 0;SCAN END",
         "0-4000 9000-40000 | 4000-8000 | 4000-9000", 42000, 0},
        {noBaseline, "1 0 0 0;3 0 0 2;5 0 0 0", " |  | 3-4", 10000, 0},
        // Too few values, none, or no numbers: the line has no effect.
        {rtpHeader, "4 1;hello;5 1 nan;5 inf 0;5 1 1e30;99999999999 1 1;;5 0 1", "1-4 |  | 5-1005",
         10000, 7},
        {rtpHeader, "5 -1 0;6 1 0;7 -3 0 9 9", "1-5 7-1007 | 6-6 | ", 14000, 0},
        // Times at the end of what a number holds.
        {rtpHeader, "-2147483647 1 0;2147483647 0 1",
         "1--2147483647 | -2147483647-2147483646 | 2147483647-2147483647", 2147483647, 0},
    };
    for (const auto& [header, lines, expected, coveredTime, incomplete] : cases) {
        SCOPED_TRACE(lines.toStdString());
        protocol.coveredTime = 0;
        startRTP(header);
        EXPECT_EQ(take(lines), QStringList(incomplete, "INTERNAL ERROR - Incomplete CSL!"));
        EXPECT_EQ(intervals(protocol.conditions), expected);
        EXPECT_EQ(protocol.coveredTime, coveredTime);
        EXPECT_EQ(rtp.rtpFinished, lines.contains("end", Qt::CaseInsensitive));
    }
    startRTP(rtpHeader);
    (void)take("1 0.5 2;2 0.9 0;3 0 0;4 0.7 0");
    EXPECT_EQ(rtp.rtpWeights, (std::vector<float>{0.7f, 2.0f}));
    // A condition whose record is full keeps its intervals.
    startRTP(rtpHeader);
    for (int i = 0; i < 301; ++i)
        (void)take(QString("%1 1 0;%2 0 0").arg(10 * i).arg(10 * i + 5));
    EXPECT_EQ(protocol.conditions[1].nrOfIntervals, 300);
    EXPECT_EQ(protocol.conditions[1].to[299], 2994);
    EXPECT_EQ(messages.shown().size(), 2); // one for each of the two conditions
}

TEST_F(ArrivingProtocol, RTPFileGivesOneLineForEachCall) {
    RealTimeProtocol realTime;
    EXPECT_FALSE(readRTPFile(folder.path(), protocol, realTime));
    EXPECT_EQ(messages.shown().last(), "ERROR: Can not open RTP file: \"" + folder.path() +
                                           "\" !\n\nCheck the \"WatchFolder\" and start again.\n");
    write(rtpHeader.toUtf8());
    protocol.coveredTime = 77;
    ASSERT_TRUE(readRTPFile(path, protocol, realTime));
    EXPECT_EQ(protocol.coveredTime, 0);
    write("\r\nSCAN BEGIN\r1 0 0\n\n4 1 ");
    const auto next = [&] { return readRTPUpdate({20, 2000.0f}, protocol, realTime); };
    EXPECT_TRUE(next().lineTaken);
    EXPECT_TRUE(next().lineTaken);
    EXPECT_EQ(protocol.coveredTime, 2000);
    EXPECT_FALSE(next().lineTaken || next().lineTaken);
    write("0\n");
    EXPECT_TRUE(next().intervalsChanged);
    EXPECT_EQ(intervals(protocol.conditions), "1-3 | 4-1004 | ");
    const qsizetype told = messages.shown().size();
    for (int i = 0; i < 99; ++i)
        write("broken\n");
    while (next().lineTaken)
        continue;
    EXPECT_EQ(messages.shown().size() - told, 20);
    write("SCAN END\n9 0 1\n");
    EXPECT_TRUE(next().lineTaken);
    EXPECT_FALSE(next().lineTaken || realTime.lines.isOpen());
}

TEST_F(ArrivingProtocol, TDATHeaderFillsProtocolSettingsAndContrasts) {
    const QString text = tdatHeader + "100 SCAN RUNBEGIN\n";
    const HeaderParsing parsing = parseTDATHeader(text, protocol, tdat, settings);
    ASSERT_TRUE(parsing.good);
    EXPECT_EQ(parsing.length, tdatHeader.size());
    EXPECT_EQ(settings.TR, 1000);
    EXPECT_EQ(settings.motionCorrection, false);
    EXPECT_EQ(protocol.experimentName, "BLOCKS");
    EXPECT_EQ(tdat.tdatEventWord, "BLOCK");
    EXPECT_TRUE(protocol.hasResponses && !protocol.acceptNewConditions);
    ASSERT_EQ(protocol.nrOfConditions(), 3);
    EXPECT_EQ(protocol.conditions[2].name, "HOUSES");
    EXPECT_EQ(protocol.conditions[2].color, (RgbColor{0, 0, 255}));
    ASSERT_EQ(tdat.contrasts.table.size(), 2u);
    EXPECT_EQ(tdat.contrasts.table[0].name, "F-H");
    EXPECT_EQ(tdat.contrasts.table[0].color, (RgbColor{9, 8, 7}));
    EXPECT_EQ(tdat.contrasts.table[0].weights, (std::vector<int>{0, 1, -1}));
    EXPECT_EQ(tdat.contrasts.table[1].weights, (std::vector<int>{0, 1, 0}));
    EXPECT_TRUE(messages.shown().isEmpty());

    const struct {
        QString text;
        QString message;
    } damaged[] = {
        {QString(tdatHeader).replace("CONDITION NAME Cue", "CONTRAST NAME Cue"),
         "ERROR: Severe parsing error in ConditionTable: Expecting token \"CONDITION\"."},
        {tdatHeader.section("0 HEADER CONDITIONTABLEEND", 0, 0),
         "ERROR: Severe parsing error in ConditionTable: Expecting token \"CONDITION\"."},
        {QString(tdatHeader).replace("CONTRAST 2", "CONDITION 2"),
         "ERROR: Severe parsing error in ContrastTable: Expecting token \"CONTRAST\"."},
        {QString(tdatHeader).replace("1000", "0"), "ERROR: SCANNERVOLUMEDURATION of .tdat file is "
                                                   "no duration in milliseconds: \"0\" !"}};
    for (const auto& [bad, message] : damaged)
        EXPECT_EQ(parseTDATHeader(bad, protocol, tdat, settings).message, message);

    const QString options = "0 HEADER TDATFILEVERSION 4\n0 HEADER FMRIANALYSISOPTIONS "
                            "Faces:1,2,3;Cue:4,5,6;Gone\n";
    ASSERT_TRUE(parseTDATHeader(options, protocol, tdat, settings).good);
    EXPECT_EQ(protocol.nrOfConditions(), 2);
    ASSERT_TRUE(
        parseTDATHeader(options + tdatHeader.section('\n', 6), protocol, tdat, settings).good);
    ASSERT_EQ(protocol.nrOfConditions(), 3);
    EXPECT_EQ(protocol.conditions[1].color, (RgbColor{1, 2, 3}));
}

TEST_F(ArrivingProtocol, TDATLinesOpenAndCloseIntervals) {
    const QString wrongName = "PARSING ERROR in TDAT file: Expected  BLOCK > FACES < ";
    const QString badLine = "WARNING: A line of the .tdat file lacks a value and is ignored, as "
                            "are all others like it:\n\nSCAN BLOCKBEGIN FACES";
    const struct {
        QString lines, expected;
        int coveredTime;
        QString shown;
    } cases[] = {
        {"900 SCAN RUNBEGIN;1000 scan BlockBegin Rest;3000 SCAN BLOCKEND REST 1900;"
         "3000 SCAN BLOCKBEGIN FACES",
         "0-1900 | 2000-1002000 | ", 3000, ""},
        {"x 500 SCAN BLOCKBEGINEND HOUSES 700;1500 SCAN BLOCKBEGINEND FACES 10.5",
         " | 1000-1010 | 0-700", 1500, ""},
        // An event of a condition that is no predictor is the first one all the same.
        {"500 SCAN BLOCKBEGIN CUE;600 SCAN BLOCKEND CUE 50;700 SCAN BLOCKBEGINEND REST 1",
         "200-201 |  | ", 700, ""},
        {"0 SCAN BLOCKBEGIN FACES;9 SCAN BLOCKEND HOUSES 3", " | 0-1000000 | ", 9, wrongName},
        {"5 HEADER X;BLOCKBEGIN FACES;7 VOLUME 3;100 SCAN", " |  | ", 100, ""},
        {"SCAN BLOCKBEGIN FACES;x SCAN BLOCKBEGIN FACES;5 SCAN BLOCKBEGIN;6 SCAN BLOCKBEGINEND "
         "FACES;7 SCAN BLOCKBEGINEND FACES nan;1e99 SCAN BLOCKBEGIN FACES",
         " |  | ", 7, badLine},
        {"2147483647 SCAN BLOCKBEGIN FACES;-2147483647 SCAN BLOCKBEGINEND REST -2147483647",
         "-2147483647--2147483647 | 0-1000000 | ", 2147483647, ""},
    };
    for (const auto& [lines, expected, coveredTime, shown] : cases) {
        SCOPED_TRACE(lines.toStdString());
        protocol.coveredTime = 0;
        ASSERT_TRUE(parseTDATHeader(tdatHeader, protocol, tdat, settings).good);
        EXPECT_EQ(take(lines, true).join('|'), shown);
        EXPECT_EQ(intervals(protocol.conditions), expected);
        EXPECT_EQ(protocol.coveredTime, coveredTime);
    }
    // An unknown condition is told of once; its end ends no other interval.
    ASSERT_TRUE(parseTDATHeader(tdatHeader, protocol, tdat, settings).good);
    EXPECT_TRUE(
        take("0 SCAN BLOCKBEGINEND FACES 5;10 SCAN BLOCKBEGIN Cars;20 SCAN BLOCKEND Cars 10;"
             "30 SCAN BLOCKBEGIN Cars",
             true)
            .isEmpty());
    EXPECT_EQ(intervals(protocol.conditions), " | 0-5 | ");
    EXPECT_EQ(messages.shown(), QStringList("WARNING: Unexpected condition \"CARS\" found!\n\nThis "
                                            "condition was not declared in header and will be "
                                            "ignored."));
}

TEST_F(ArrivingProtocol, TDATResponsesAreKept) {
    ASSERT_TRUE(parseTDATHeader(tdatHeader, protocol, tdat, settings).good);
    const QString lines = "100 SCAN BLOCKBEGIN FACES;150 SCAN RESPONSE key 420 1 0 b;"
                          "250 SCAN RESPONSE key 0 0 1;350 SCAN RESPONSE key 5";
    EXPECT_EQ(take(lines, true).size(), 1); // the last one lacks values
    ASSERT_EQ(intervals(protocol.responseConditions), "50-51 150-151");
    const ProtocolCondition& table = protocol.responseConditions[0];
    EXPECT_EQ(table.name, "RESPONSE");
    EXPECT_EQ(table.reactionTime[0], 420);
    EXPECT_EQ(table.accuracy[0], 1);
    EXPECT_EQ(table.omission[1], 1);
    EXPECT_STREQ(table.buttons[0].data(), "B");
    protocol.hasResponses = false;
    (void)take("450 SCAN RESPONSE key 420 1 0 b", true);
    EXPECT_EQ(table.nrOfIntervals, 2);
}

TEST_F(ArrivingProtocol, TDATLinesBeginBehindWhatWasHeader) {
    const QByteArray header = tdatHeader.toUtf8();
    for (const QByteArray& tail : {QByteArray(), QByteArray("100 SCAN BLOCKBEGIN Fa")}) {
        TDATProtocol log;
        write(header + tail, QIODevice::WriteOnly);
        ASSERT_TRUE(readTDATFile(path, "a.vco", protocol, log, settings));
        EXPECT_FALSE(readTDATUpdate(protocol, log).lineTaken);
        write(QByteArray("100 SCAN BLOCKBEGIN Faces\n200 SCAN RUNEND\n").mid(tail.size()));
        EXPECT_TRUE(readTDATUpdate(protocol, log).intervalsChanged);
        EXPECT_TRUE(readTDATUpdate(protocol, log).lineTaken);
        EXPECT_FALSE(log.lines.isOpen());
        EXPECT_EQ(intervals(protocol.conditions), " | 0-1000000 | ");
    }
}

TEST_F(ArrivingProtocol, DocumentedExamplesGiveWhatTheirPageSays) {
    QFile page(VELO_SOURCE_DIR "/docs/file_formats_arriving_protocols.md");
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    write(text.section("```\n", 1, 1).toUtf8());
    RealTimeProtocol realTime;
    ASSERT_TRUE(readRTPFile(path, protocol, realTime));
    while (readRTPUpdate({10, 2000.0f}, protocol, realTime).lineTaken)
        continue;
    EXPECT_EQ(intervals(protocol.conditions), "1-2 6-10 | 3-4 | 5-5");
    write(text.section("```\n", 3, 3).toUtf8(), QIODevice::WriteOnly);
    TDATProtocol log;
    ASSERT_TRUE(readTDATFile(path, "a.vco", protocol, log, settings));
    while (readTDATUpdate(protocol, log).lineTaken)
        continue;
    EXPECT_EQ(intervals(protocol.conditions), "0-4000 | 4000-8000 | 8000-10000");
    EXPECT_EQ(intervals(protocol.responseConditions), "4630-4631");
    EXPECT_TRUE(log.state.runEnded && messages.shown().isEmpty());
}

TEST_F(ArrivingProtocol, ScrambledTextLeavesTheTablesSound) {
    std::mt19937 random(7);
    const auto scrambled = [&random](QString text) {
        static const QString pieces[] = {"HEADER", "-1",     "999999999", "\"", "\n",
                                         " ",      "SCAN",   "CONTRAST",  "",   QString(1, QChar()),
                                         "nan",    "1e308 ", ",",         ":;"};
        for (int i = 0; i < 4; ++i)
            text.replace(qsizetype(random() % size_t(text.size() + 1)), qsizetype(random() % 9),
                         pieces[random() % std::size(pieces)]);
        return text;
    };
    const auto isSound = [this] {
        for (const ProtocolCondition& condition : protocol.conditions)
            if (condition.nrOfIntervals < 0 || condition.nrOfIntervals > 300)
                return false;
        return true;
    };
    for (int round = 0; round < 2000; ++round) {
        (void)parseRTPHeader(scrambled(rtpHeader), protocol, rtp);
        (void)parseTDATHeader(scrambled(tdatHeader), protocol, tdat, settings);
        startRTP(rtpHeader);
        (void)take(scrambled("4 1 0;6 0 0;7 1 1;8 0 1;SCAN END"));
        EXPECT_TRUE(isSound());
        EXPECT_TRUE(parseTDATHeader(tdatHeader, protocol, tdat, settings).good);
        (void)take(scrambled("0 SCAN BLOCKBEGIN FACES;5 SCAN BLOCKEND FACES 4;"
                             "6 SCAN BLOCKBEGINEND HOUSES 9;7 SCAN RESPONSE A 1 1 0 B"),
                   true);
        EXPECT_TRUE(isSound());
    }
}
