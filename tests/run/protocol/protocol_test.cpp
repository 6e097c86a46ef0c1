// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/prt_file.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

const QByteArray whole = corpusText("prt/responses.prt").replace("msec", "Volumes").toUtf8();
const QByteArray header = whole.left(whole.indexOf("NrOfConditions"));
const QByteArray tables = whole.mid(header.size());

class ProtocolFile : public testing::Test {
protected:
    ProtocolFile() { protocol.protocolPath = folder.filePath("a.prt"); }
    void write(const QByteArray& text) { writeFile(protocol.protocolPath, text); }
    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    StimulationProtocol protocol;
};

} // namespace

TEST_F(ProtocolFile, TheUnitFollowsVersionAndFirstLetter) {
    const QByteArray version1 = header.mid(header.indexOf("Experiment"));
    const std::tuple<QByteArray, int, ResolutionOfTime> cases[] = {
        {version1, 1, ResolutionOfTime::Volumes},
        {"FileVersion: 1 " + version1, 1, ResolutionOfTime::Volumes},
        {QByteArray(header).replace("Volumes", "vol"), 2, ResolutionOfTime::Volumes},
        {QByteArray(header).replace("Volumes", "TR"), 2, ResolutionOfTime::Milliseconds}};
    for (const auto& [text, version, unit] : cases) {
        protocol.SegmentSize = 33;
        write(text + tables);
        ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Skip)) << text.constData();
        EXPECT_EQ(protocol.protocolFileVersion, version);
        EXPECT_EQ(protocol.resolutionOfTime, unit);
        EXPECT_EQ(protocol.SegmentSize, unit == ResolutionOfTime::Volumes ? 20 : 33);
    }
}

TEST_F(ProtocolFile, IsReadAndWrittenInItsLayout) {
    const QByteArray laidOut = corpusText("prt/blocks.prt").toUtf8();
    write(laidOut);
    ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Skip));
    EXPECT_EQ(protocol.SegmentOffset, 10);
    ASSERT_TRUE(writePRTFile(protocol));
    EXPECT_EQ(contentOf(protocol.protocolPath).toStdString(), laidOut.toStdString());

    write(whole);
    ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Skip));
    EXPECT_FALSE(protocol.hasResponses || protocol.nrOfResponseConditions() > 0);
    ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Read));
    EXPECT_TRUE(protocol.hasResponses);
    protocol.experimentName.clear();
    EXPECT_EQ(prtText(protocol).mid(prtText(protocol).indexOf("ResponseC")),
              "ResponseConditions:  1\nNrOfResponseEvents: 1\nFrom:    5  To:    6\n"
              "TimeOfResponse: 7\nRT: 350\nButtons: \"a b\"\nOmission: 0\nAccuracy: 1\n\n");
    protocol.conditions[1].name.clear(); // would shift the lines after it
    ASSERT_TRUE(writePRTFile(protocol));
    ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Read));
    EXPECT_EQ(protocol.conditions[1].from[0], 11);
    EXPECT_EQ(prtText(protocol).count("<untitled>"), 2);
}

TEST_F(ProtocolFile, DamagedFilesAreRefusedWithoutChange) {
    std::vector<QByteArray> texts = {
        "", "NrOfConditions: 3", header + "NrOfConditions: 2000000000\na\n0\nColor: 1 2 3\n",
        header + "NrOfConditions: 1\na\n2000000000\n1 2\nColor: 1 2 3\n"};
    // Cut before any of its words; the response table alone may be missing.
    for (qsizetype i = 1; i + 1 < whole.size(); ++i)
        if (std::isspace(whole[i - 1]) && !std::isspace(whole[i]) &&
            i != whole.indexOf("ResponseConditions"))
            texts.push_back(whole.left(i));
    for (const QByteArray& text : texts) {
        const QString path = folder.filePath("a.prt");
        protocol.protocolPath = path;
        protocol.experimentName = "before";
        write(text);
        messages.expectWarning("ERROR: Protocol file \"" + path + "\" is damaged: *");
        EXPECT_FALSE(readPRTFile(protocol, ResponseTable::Read)) << text.constData();
        EXPECT_EQ(protocol.protocolPath, "");
        EXPECT_EQ(protocol.experimentName, "before");
    }
    protocol.protocolPath = folder.filePath("gone.prt");
    messages.expectWarning("ERROR: Unable to open referenced protocol file > "
                           "gone.prt < for reading!");
    EXPECT_FALSE(readPRTFile(protocol, ResponseTable::Skip));
    EXPECT_EQ(protocol.protocolPath, "");
    EXPECT_TRUE(programEnd.statuses.empty());
}

TEST_F(ProtocolFile, MoreThan300IntervalsAreCutAndTheRestIsReadRight) {
    QByteArray intervals;
    for (int i = 1; i <= 310; ++i)
        intervals += QByteArray::number(i) + ' ' + QByteArray::number(i) + '\n';
    const QByteArray name(300, 'n');
    write(header + "NrOfConditions: 3\nlong\n310\n" + intervals + "Color: 1 2 3\n" +
          "longer\n310\n" + intervals + "Color: 1 2 3\n" + name + "\n1\n400 401\nColor: 7 8 9\n");
    messages.expectWarning("WARNING: Condition \"long\" of protocol file has more "
                           "than 300 intervals; the first 300 are used.");
    messages.expectWarning("WARNING: Protocol file \"a.prt\" has a name of more*");
    ASSERT_TRUE(readPRTFile(protocol, ResponseTable::Skip));
    EXPECT_EQ(protocol.conditions[0].nrOfIntervals, 300);
    EXPECT_EQ(protocol.conditions[1].to[299], 300);
    EXPECT_EQ(protocol.conditions[2].name, QString(255, 'n'));
    EXPECT_EQ(protocol.conditions[2].color, (RgbColor{7, 8, 9}));
    // One message for each condition that fills up during a run.
    messages.expectWarning("WARNING: Condition \"long\" has more than*");
    EXPECT_FALSE(protocol.addInterval(0, 1, 2));
    EXPECT_FALSE(protocol.addInterval(0, 3, 4));
    EXPECT_FALSE(protocol.addInterval(3, 3, 4));
}

// Under the other names whole runs are recorded.
TEST_F(ProtocolFile, ARunWithoutAFileIsRecordedToo) {
    protocol.protocolPath.clear();
    ASSERT_TRUE(writeRecordedPRTFile(protocol, "run1.fmr", folder.path() + '/'));
    EXPECT_TRUE(QFile::exists(folder.filePath("realtime.prt")));
    messages.expectWarning("ERROR: Unable to open protocol file!");
    EXPECT_FALSE(writeRecordedPRTFile(protocol, "run1.fmr", folder.path() + "/gone/"));
    EXPECT_EQ(protocol.protocolPath, "");
}

TEST(Conditions, AVolumeHasTheFirstConditionThatHolds) {
    StimulationProtocol protocol;
    for (const auto& [from, to] : {std::pair(2, 3), std::pair(3, 4), std::pair(6, 6)})
        (void)protocol.addInterval(protocol.conditionIndex(QString::number(from)), from, to);
    protocol.resolutionOfTime = ResolutionOfTime::Volumes;
    const auto conditions = [&protocol](int volumes, float TR) {
        std::vector<int> found;
        for (int volume = 0; volume < volumes; ++volume)
            found.push_back(conditionAtVolume(protocol, volume, TR));
        return found;
    };
    EXPECT_EQ(conditions(7, 2000.0f), (std::vector<int>{-1, 0, 0, 1, -1, 2, -1}));
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    EXPECT_EQ(conditions(5, 1.5f), (std::vector<int>{-1, -1, 0, -1, 2}));
    EXPECT_EQ(conditionAtVolume(protocol, -3, 2000.0f), -1);
}
