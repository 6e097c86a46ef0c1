// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_files.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

const QByteArray wgt = "FileVersion: 1\n"
                       "NrOfTasks:   3\n"
                       "NrOfVOIs:    6\n"
                       " 1.000000 -0.250000 0.000000 0.333333 0.000000 0.000000\n"
                       " 0.000000 1.000000 0.000000 0.000000 12.500000 0.000000\n"
                       " 0.000000 0.000000 1.000000 0.000000 0.000000 -1000000.000000\n";

const QByteArray bds = "Version: 1\n"
                       "\n"
                       "SkipTimePointsAtBegin:   2\n"
                       "\n"
                       "FullWindowSize:          42\n"
                       "SkipAtBeginOfWindow:     3\n"
                       "SkipAtEndOfWindow:       -1\n"
                       "IdealResponseWindowSize: 40\n"
                       "HelperVOIsMode:          1\n"
                       "CorrBetaTau:             0.3\n"
                       "\n"
                       "MeanForPercSignalFrom:   1\n"
                       "MeanForPercSignalTo:     39\n"
                       "\n"
                       "NrOfExtraPlotLines:      2\n"
                       "7.5\n"
                       "250\n";

template<typename Parse>
void expectRefusedWhereCut(const QByteArray& whole, qsizetype shortest, const Parse& parse) {
    for (qsizetype size = 0; size < whole.size() - shortest; ++size)
        EXPECT_FALSE(parse(QString::fromUtf8(whole.left(size)))) << size;
}

using Changes = std::vector<std::pair<const char*, const char*>>;

template<typename Parse>
void expectRefused(const QByteArray& whole, const Changes& changes, const Parse& parse) {
    for (const auto& [from, to] : changes) {
        const QByteArray text = QByteArray(whole).replace(from, to);
        ASSERT_NE(text, whole) << from;
        EXPECT_FALSE(parse(QString::fromUtf8(text))) << from << " -> " << to;
    }
}

TEST(WeightsFile, IsReadAndWrittenByteForByte) {
    const auto weights = parseWeights(wgt);
    ASSERT_TRUE(weights);
    EXPECT_EQ((*weights)[0][1], -0.25f);
    EXPECT_EQ((*weights)[1][4], 12.5f);
    EXPECT_EQ(weightsText(*weights), wgt);
    EXPECT_EQ(parseWeights(wgt.simplified().replace("FileVersion:", "fileversion")), weights);
    TaskWeights scaled{};
    scaled[0] = {0.577350269f, -1.0f, 0.0f, 0.0f, 0.0f, 0.000123456789f};
    EXPECT_EQ(scaledWeightsText(scaled).split('\n')[0],
              "  0.57735        -1         0         0         0 0.000123457 ");
    EXPECT_EQ(scaledWeightsText(scaled).count('\n'), 3);
}

TEST(WeightsFile, IsRefusedWhereItIsDamaged) {
    expectRefusedWhereCut(wgt, 16, parseWeights); // behind the last sign a shorter number is one
    expectRefused(wgt,
                  {{"FileVersion: 1", "FileVersion: 2"},
                   {"NrOfTasks:   3", "NrOfTasks: 2147483648"},
                   {"NrOfTasks:   3", "NrOfTasks: -3"},
                   {"NrOfVOIs:    6", "NrOfVOIs: 7"},
                   {"NrOfVOIs:", "NrOfROIs:"},
                   {"0.333333", "0,333333"},
                   {"0.333333", "nan"},
                   {"0.333333", "inf"},
                   {"0.333333", "1e39"},
                   {"0.333333", "-1000001"},
                   {"0.333333", "0.333333 0"}},
                  parseWeights);
}

TEST(TypedWeights, AreReadCellByCell) {
    WeightCells cells;
    for (auto& row : cells)
        row.fill("0");
    cells[1] = {"1", " -2.5 ", "1e6", "0", "0", "0"};
    EXPECT_EQ(typedWeights(cells).weights[1], (std::array<float, 6>{1, -2.5f, 1e6f}));
    EXPECT_EQ(typedWeights(cells).fault, "");
    for (const char* cell : {"", "1 0", "1,5", "x", "nan", "1000001", "-1e7"}) {
        cells[2][3] = cell;
        EXPECT_TRUE(typedWeights(cells).fault.startsWith("The weight of SMA 1 for task 3 must"))
            << cell;
    }
}

TEST(DecoderSettingsFile, IsReadAndWrittenByteForByte) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.NrOfLetters = 12; // not in the file
    const auto read = parseDecoderSettings(bds, settings);
    settings.SkipTimePointsAtBegin = 2;
    settings.HelperVOIsMode = HelperVOIs::OnlyHelpers;
    settings.CorrBetaTau = 0.3f;
    settings.MeanForPercSignalFrom = 1;
    settings.MeanForPercSignalTo = 39;
    settings.extraLines = {7.5f, 250.0f};
    EXPECT_EQ(read, settings);
    EXPECT_EQ(decoderSettingsText(settings), bds);
    settings.extraLines = {1.0f};
    EXPECT_EQ(parseDecoderSettings(bds.simplified(), settings), read);
}

TEST(DecoderSettingsFile, IsRefusedWhereItIsDamaged) {
    const auto parse = [](const QString& text) {
        return parseDecoderSettings(text, defaultDecoderSettings());
    };
    expectRefusedWhereCut(bds, 6, parse);
    expectRefused(bds,
                  {{"Version: 1", "Version: 2"},
                   {"Begin:   2", "Begin: -1"},
                   {"Begin:   2", "Begin: 100001"},
                   {"FullWindowSize:          42", "FullWindowSize: 0"},
                   {"FullWindowSize:          42", "FullWindowSize: 2147483648"},
                   {"FullWindowSize:          42", "FullWindowSize: 2"},
                   {"SkipAtBeginOfWindow:     3", "SkipAtBeginOfWindow: 43"},
                   {"SkipAtBeginOfWindow:     3", "SkipAtBeginOfWindow: -3"},
                   {"SkipAtEndOfWindow:       -1", "SkipAtEndOfWindow: 39"},
                   {"SkipAtEndOfWindow", "SkipAtBeginOfWindow"},
                   {"IdealResponseWindowSize: 40", "IdealResponseWindowSize: 39"},
                   {"Mode:          1", "Mode: 0"},
                   {"Mode:          1", "Mode: 4"},
                   {"0.3", "nan"},
                   {"0.3", "-0.1"},
                   {"0.3", "1.01"},
                   {"From:   1", "From: 40"},
                   {"To:     39", "To: 0"},
                   {"To:     39", "To: 40"},
                   {"Lines:      2", "Lines: 1"},
                   {"Lines:      2", "Lines: 3"},
                   {"7.5", "-0.5"},
                   {"250", "100001"}},
                  parse);
    EXPECT_TRUE(
        parse("Version: 1 SkipTimePointsAtBegin: 0 FullWindowSize: 1 SkipAtBeginOfWindow: 0 "
              "SkipAtEndOfWindow: 0 IdealResponseWindowSize: 1 HelperVOIsMode: 1 "
              "CorrBetaTau: 0 MeanForPercSignalFrom: 0 MeanForPercSignalTo: 0 "
              "NrOfExtraPlotLines: 0"))
        << "the least of all";
    QString most = bds;
    most.replace("Lines:      2", "Lines: 1000").append(QString("1\n").repeated(998));
    EXPECT_TRUE(parse(most));
    EXPECT_FALSE(parse(most.replace("Lines: 1000", "Lines: 1001") + "1\n"));
}

/// The text of a file with each loader's message for it.
class CurveFiles : public testing::Test {
protected:
    [[nodiscard]] auto referencesOf(const QByteArray& text) const {
        writeFile(path_, text);
        return loadReferences(path_);
    }
    [[nodiscard]] auto curvesOf(const QByteArray& text) const {
        writeFile(path_, text);
        return loadOfflineCurves(path_);
    }
    [[nodiscard]] QString path() const { return path_; }
    ScriptedMessages messages_;

private:
    QTemporaryDir folder_;
    QString path_ = folder_.filePath("curves.rtc");
};

QByteArray seriesText(int count, const QByteArray& values) {
    QByteArray text = "NrOfRTCs: " + QByteArray::number(count) + "\nNrOfValues: 2\n";
    for (int i = 0; i < count; ++i)
        text += "Title: VOI Task " + QByteArray::number(i) +
                "\nA: 1\nB: 2\nC: 3\nD: 4\nE: 5\nF: 6\n" + values + '\n';
    return text;
}

// The bytes are those of the file that comes with the program, which responses_test compares.
TEST_F(CurveFiles, ReferencesAreReadAsTheyAreWritten) {
    ReferenceCurves references;
    for (size_t r = 0; r < references.size(); ++r)
        references[r] = {100.0f + float(r), -0.5f};
    ASSERT_TRUE(writeReferences(references, path()));
    const QByteArray text = contentOf(path());
    EXPECT_EQ(loadReferences(path(), 2), references);
    messages_.expectWarning("ERROR: Unable to open file \"/nowhere/a.rtc\"!");
    EXPECT_FALSE(writeReferences(references, "/nowhere/a.rtc"));

    const QString problem = "INFO - Problem loading RTC file with ideal responses!\n";
    messages_.expectInformation(problem + "The file \"" + path() +
                                "\" has 2 points, but the window of ideal responses 3.");
    EXPECT_FALSE(loadReferences(path(), 3));
    for (const QByteArray& damaged :
         {seriesText(9, "1 2"), QByteArray(text).replace("DesignMatrix", "Motion"),
          QByteArray(text).replace("106.000000", "1e39")}) {
        messages_.expectInformation(problem + '*');
        EXPECT_FALSE(referencesOf(damaged)) << damaged.toStdString();
    }
    messages_.expectInformation(problem + '*');
    EXPECT_FALSE(loadReferences("/nowhere/a.rtc"));
    messages_.expectWarning("This file must contain 9 time courses but has 2");
    EXPECT_FALSE(referencesOf("FileVersion: 2 Type: DesignMatrix NrOfPredictors: 2 "
                              "NrOfDataPoints: 1 \"a\" \"b\" 1 2"));
}

TEST_F(CurveFiles, OfflineCurvesAreOfThreeToSixROIs) {
    for (int count = 3; count <= 6; ++count) {
        const auto offline = curvesOf(seriesText(count, "400.25 -3"));
        ASSERT_TRUE(offline) << count;
        EXPECT_EQ(offline->size, (CurvesSize{count, 2}));
        EXPECT_EQ(sizeOfOfflineCurves(path()), offline->size);
        const auto part = loadOfflineCurves(path(), {3, 1});
        ASSERT_TRUE(part);
        EXPECT_EQ(part->size, (CurvesSize{3, 1}));
        for (int roi = 0; roi < nrOfDecoderROIs; ++roi) {
            EXPECT_EQ(offline->curves[size_t(roi)],
                      roi < count ? (std::vector{400.25f, -3.0f}) : std::vector(2, 0.5f));
            EXPECT_EQ(part->curves[size_t(roi)], std::vector(1, roi < 3 ? 400.25f : 0.5f));
        }
    }
    const QString problem =
        "INFO - Problem loading RTC file with VOI time courses!\nThe file \"" + path() + "\" ";
    const std::pair<QByteArray, const char*> refused[] = {
        {seriesText(2, "1 2"), "has 2 VOIs, but it needs 3 to 6."},
        {seriesText(7, "1 2"), "has 7 VOIs*"},
        {seriesText(3, "1 -1e39"), "has numbers*"},
        {seriesText(3, "1 2").replace("Values: 2", "Values: 2147483647"), "is cut*"},
        {"FileVersion: 2 Type: DesignMatrix NrOfPredictors: 3 NrOfDataPoints: 1 "
         "\"a\" \"b\" \"c\" 1 2 3",
         "is a design matrix*"},
        {{}, "is cut*"}};
    for (const auto& [text, reason] : refused) {
        messages_.expectInformation(problem + reason);
        EXPECT_FALSE(curvesOf(text)) << text.left(200).toStdString();
        EXPECT_FALSE(sizeOfOfflineCurves(path()));
    }
    EXPECT_TRUE(curvesOf(seriesText(4, "1 2")));
    for (const CurvesSize& part : {CurvesSize{5, 2}, {4, 3}}) {
        messages_.expectInformation(problem + "has 4 VOIs and 2 time points, but*");
        EXPECT_FALSE(loadOfflineCurves(path(), part));
    }
}

} // namespace
