// Several runs in one model: their list, the designs of the runs, the common design, their data.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/multi_study_design.h"

#include "support/conditions.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"
#include "volume/volume_runs.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

RunOfStudy runWith(std::vector<ProtocolCondition> conditions, int nrOfVolumes = 12) {
    RunOfStudy run;
    run.NrOfVolumes = nrOfVolumes;
    run.TR = 2000.0f;
    run.protocol.conditions = std::move(conditions);
    return run;
}

class MultiStudy : public testing::Test {
protected:
    /// A sample of run 0, 1 or 2.
    static int16_t valueAt(int run, int x, int y, int slice, int volume) {
        return int16_t(x + 10 * y + 100 * slice + 1000 * volume + 5000 * run);
    }
    /// A run on disk; its last letter, from "a", is its number.
    FMRProject saveRun(const QString& name, int nrOfVolumes, int sizeX = 4, int nrOfSlices = 3) {
        const int run = name.back().unicode() - 'a';
        FMRProject project =
            runOf(sizeX, 2, nrOfSlices, nrOfVolumes,
                  [run](int x, int y, int z, int t) { return valueAt(run, x, y, z, t); });
        project.Prefix = name;
        project.targetFolder = folder.path() + "/";
        project.projectPath = path(name + ".fmr");
        EXPECT_TRUE(writeFMRHeader(project, project.projectPath, nrOfVolumes));
        EXPECT_TRUE(writeSTCData(project, nrOfVolumes, nullptr, nullptr, 0, 0));
        return project;
    }
    /// A design with value 100 study + 10 t + column.
    void saveDesign(const QString& name, int study, int points, const QStringList& names) {
        RTCFile file;
        file.names = names;
        file.nrOfDataPoints = points;
        for (int j = 0; j < names.size(); ++j) {
            std::vector<float>& column = file.columns.emplace_back();
            for (int t = 0; t < points; ++t)
                column.push_back(float(100 * study + 10 * t + j));
        }
        EXPECT_TRUE(writeDesignMatrixRTC(file, path(name + ".rtc")));
    }
    /// Runs a, b and c of 2, 3 and 2 volumes with two conditions, of subjects 7, 2 and 7.
    MultiStudyList threeRuns(SeparatePredictors separation) {
        MultiStudyList list{ZTransformation::Study, separation, {}};
        for (int i = 0; i < 3; ++i) {
            const QString name = QString(QChar('a' + i));
            const int points = i == 1 ? 3 : 2;
            saveRun(name, points);
            saveDesign(name, i, points, {"Hand", "Foot"});
            EXPECT_TRUE(addStudyAndDesignMatrix(list, path(name + ".fmr"), path(name + ".rtc")));
            list.studies.back().subject = i == 1 ? 2 : 7;
        }
        return list;
    }
    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }

    QTemporaryDir folder;
    ScriptedMessages messages;
    WholeRunDesign design;
    VolumeSize size;
};

TEST_F(MultiStudy, TheListReadsBack) {
    MultiStudyList list{ZTransformation::StudyModel, SeparatePredictors::Subjects, {}};
    list.studies = {{0, "/d/a b.fmr", "/d/a.rtc", 3}, {0, "c.fmr", "c.rtc", 1}};
    const QByteArray text = "FileVersion:         1\n"
                            "zTransformation:     2\n"
                            "SeparatePredictors:  2\n\n"
                            "NrOfStudies:         2\n"
                            "\"/d/a b.fmr\" \"/d/a.rtc\"\n"
                            "\"c.fmr\" \"c.rtc\"\n";
    const QByteArray withSubjects = text + "Subjects: 3 1\n";
    EXPECT_EQ(mdmText(list), withSubjects);
    MultiStudyList read;
    ASSERT_TRUE(parseMDM(withSubjects, read));
    EXPECT_EQ(read, list);
    for (qsizetype length = text.size() - 2; length >= 0; --length)
        EXPECT_FALSE(parseMDM(text.left(length), read)) << length;
    constexpr std::pair<const char*, const char*> damages[] = {
        {"ion:         1", "ion: 2"},
        {"zTran", "Tran"},
        {"ors:  2", "ors: 3"},
        {"ies:         2", "ies: 2000000000"},
        {"3 1", "3"},
        {"3 1", "3 0"},
        {"Sub", "Ob"}};
    for (const auto& [from, to] : damages)
        EXPECT_FALSE(parseMDM(QString(withSubjects).replace(from, to), read)) << to;
    EXPECT_EQ(read, list);

    // Without subjects each study is one; relative names are beside the list.
    writeFile(path("x.mdm"), text);
    ASSERT_TRUE(readMDMFile(path("x.mdm"), read));
    EXPECT_EQ(read.studies[1], (GLMStudy{0, path("c.fmr"), path("c.rtc"), 2}));
    messages.expectCritical("ERROR: \"" + path("x.mdm") + "\" is no list of runs*");
    writeFile(path("x.mdm"), text.left(100));
    EXPECT_FALSE(readMDMFile(path("x.mdm"), read));
    messages.expectCritical("ERROR: Can not open .mdm file !");
    EXPECT_FALSE(readMDMFile(path("no/x.mdm"), read));
    messages.expectCritical("ERROR: Can not open .mdm file !");
    EXPECT_FALSE(writeMDMFile(path("no/x.mdm"), list));
}

TEST_F(MultiStudy, FilesThatAreMissingAreNotAdded) {
    MultiStudyList list;
    const auto addA = [&] { return addStudyAndDesignMatrix(list, path("a.fmr"), path("a.rtc")); };
    const QString missing =
        "ERROR in \"addStudyAndDesignMatrix\": %1 file name  \"%2\" not found! ";
    messages.expectCritical(missing.arg("Study", path("a.fmr")));
    EXPECT_FALSE(addA());
    saveRun("a", 2);
    messages.expectCritical(missing.arg("Design matrix", path("a.rtc")));
    EXPECT_FALSE(addA());
    messages.expectWarning("Error reading file: Unknown file format!");
    writeFile(path("a.rtc"), "GIF89a");
    EXPECT_FALSE(addA());
    EXPECT_TRUE(list.studies.empty());
    saveDesign("a", 0, 2, {""});
    EXPECT_TRUE(addA());
}

// Expected columns from NumPy: the box-car convolved with ((k - 2.5 s) / 1.25 s)^2
// exp(-(k - 2.5 s) / 1.25 s), which sums to 1, in steps of a volume or of a millisecond.
TEST_F(MultiStudy, RunDesignsHaveAColumnForEachConditionOfAnyRun) {
    std::vector<RunOfStudy> runs{
        runWith({conditionWith("Rest", {{1, 1}}), conditionWith("Hand", {{2, 4}, {9, 20}})}),
        runWith({conditionWith("Foot", {{3000, 7000}, {15500, 99999}}), conditionWith("Rest", {}),
                 conditionWith("Hand", {{3000, 7000}, {15500, 99999}})})};
    runs[1].protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    runs[1].subject = 4;
    for (int i = 0; i < 2; ++i)
        runs[size_t(i)].studyFile = saveRun(QChar('a' + i), 12).projectPath;
    const std::vector<StudyCondition> conditions = unionOfConditions(runs);
    ASSERT_EQ(conditions.size(), 3u);
    EXPECT_EQ(conditions[0].name, "Rest");
    EXPECT_EQ(conditions[2].name, "Foot");

    MultiStudyList list{ZTransformation::None, SeparatePredictors::Subjects, {{}}};
    writeFile(path("all.mdm"), "old");
    ASSERT_TRUE(createRunDesignMatrices(runs, path("all"), list));
    MultiStudyList read;
    ASSERT_TRUE(readMDMFile(path("all.mdm"), read));
    ASSERT_EQ(read.studies.size(), 2u);
    EXPECT_EQ(read.studies[1], (GLMStudy{0, runs[1].studyFile, path("all_run-2.rtc"), 4}));
    EXPECT_EQ(list.studies[1].dataPoints, 12);

    const std::vector<float> expected[] = {{0, 0, 0, 0.339352f, 0.712372f, 0.898346f, 0.628813f,
                                            0.278410f, 0.099127f, 0.031170f, 0.348400f, 0.714857f},
                                           {0, 0, 0, 0.007951f, 0.323552f, 0.689633f, 0.568022f,
                                            0.268348f, 0.098750f, 0.031671f, 0.226141f, 0.622808f}};
    for (size_t i = 0; i < 2; ++i) {
        RTCFile file;
        ASSERT_EQ(parseRTC(contentOf(read.studies[i].designFile), file), RTCParseResult::Ok);
        EXPECT_EQ(file.names, (QStringList{"Hand", "Foot"}));
        ASSERT_EQ(file.nrOfDataPoints, 12);
        for (size_t t = 0; t < 12; ++t)
            EXPECT_NEAR(file.columns[0][t], expected[i][t], 2e-4) << i << ' ' << t;
        EXPECT_EQ(file.columns[1], i == 1 ? file.columns[0] : std::vector<float>(12, 0.0f));
    }
    list.studies.clear();
    messages.expectWarning("ERROR: Can not open .rtc file for writing design matrix file !");
    EXPECT_FALSE(createRunDesignMatrices(runs, path("no/all"), list));
    EXPECT_TRUE(list.studies.empty());
}

TEST_F(MultiStudy, ColumnsFollowTheLayout) {
    // Groups of each study, in steps of two columns, and the names of the groups.
    const std::tuple<SeparatePredictors, std::vector<int>, QStringList> cases[] = {
        {SeparatePredictors::None, {0, 0, 0}, {""}},
        {SeparatePredictors::Studies, {0, 1, 2}, {"Study 1: ", "Study 2: ", "Study 3: "}},
        {SeparatePredictors::Subjects, {1, 0, 1}, {"Subject 2: ", "Subject 7: "}}};
    for (const auto& [separation, groups, prefixes] : cases) {
        const MultiStudyList list = threeRuns(separation);
        ASSERT_TRUE(assembleMultiStudyDesign(list, {{1, 2, 3}}, design, size));
        EXPECT_EQ(size, (VolumeSize{4, 2, 3}));
        EXPECT_EQ(design.transformation, ZTransformation::Study);
        EXPECT_EQ(design.separation, separation);
        ASSERT_EQ(design.GLMDataPoints(), 7);
        const int conditions = 2 * int(prefixes.size());
        ASSERT_EQ(design.GLMPredictors(), conditions + 3);
        for (int j = 0; j < conditions + 3; ++j) {
            const bool isConstant = j >= conditions;
            const QString name = isConstant ? "Study signal level (confound)"
                                            : prefixes[j / 2] + (j % 2 == 0 ? "Hand" : "Foot");
            const GLMPredictor& predictor = design.predictors[size_t(j)];
            EXPECT_EQ(predictor.label, QString("Predictor: %1").arg(j + 1));
            EXPECT_EQ(predictor.name, name);
            EXPECT_EQ(predictor.color.green, isConstant ? 255 : j % 2 == 0 ? 2 : 128);
            EXPECT_EQ(design.conditionOfColumn[size_t(j)], isConstant ? -1 : j % 2);
        }
        EXPECT_EQ(conditionsOfColumns(design), design.conditionOfColumn);
        std::vector<float> expected;
        for (int study = 0; study < 3; ++study)
            for (int t = 0; t < (study == 1 ? 3 : 2); ++t) {
                std::vector<float> row(size_t(conditions + 3), 0.0f);
                const size_t first = size_t(2 * groups[size_t(study)]);
                row[first] = float(100 * study + 10 * t);
                row[first + 1] = row[first] + 1.0f;
                row[size_t(conditions + study)] = 1.0f;
                expected.insert(expected.end(), row.begin(), row.end());
            }
        EXPECT_EQ(design.GLMDesign, expected);
    }
}

TEST_F(MultiStudy, DesignsOfVersionOneHaveNoNamesAndAnyNumberOfColumns) {
    MultiStudyList list = threeRuns(SeparatePredictors::None);
    list.studies.resize(1);
    QByteArray series = "NrOfRTCs: 60\nNrOfValues: 2\n";
    for (int j = 0; j < 60; ++j)
        series += "Title: x\na: 1 b: 2 c: 3 d: 4 e: 5 f: 6\n0 1\n";
    writeFile(path("a.rtc"), series);
    ASSERT_TRUE(assembleMultiStudyDesign(list, {}, design, size));
    EXPECT_EQ(design.GLMPredictors(), 61);
    EXPECT_EQ(design.predictors[1].name, "Predictor 2");
    EXPECT_EQ(design.GLMDesign[61 + 59], 1.0f);
}

TEST_F(MultiStudy, RunsThatDoNotFitAreRefused) {
    const MultiStudyList list = threeRuns(SeparatePredictors::None);
    const auto expectRefused = [&](const QString& message) {
        messages.expectCritical("ERROR: " + message);
        EXPECT_FALSE(assembleMultiStudyDesign(list, {}, design, size)) << message.toStdString();
    };
    saveRun("b", 3, 5);
    expectRefused("Different image resolution of functional data files!");
    saveRun("b", 3, 4, 2);
    expectRefused("Different number of slices of functional data files!");
    saveRun("b", 3);
    saveDesign("b", 0, 3, {"Hand"});
    expectRefused("Different number of predictors in design matrix files!");
    saveDesign("b", 0, 2, {"Hand", "Foot"});
    expectRefused("Different number of time points between design matrix and data files!");
    for (const char* damage : {"1e60 0", "0"}) {
        writeFile(path("b.rtc"), QByteArray("FileVersion: 2\nType: DesignMatrix\n"
                                            "N: 1 N: 3 \"a\" 0 ") +
                                     damage);
        expectRefused("Design matrix file \"" + path("b.rtc") + "\" is damaged or ends too early!");
    }
    writeFile(path("b.rtc"), "FileVersion: 2\nType: Motion");
    expectRefused("RTC file is not of type \"DesignMatrix\" !");
    writeFile(path("b.rtc"), "GIF89a");
    messages.expectCritical("Error reading file: Unknown file format!");
    EXPECT_FALSE(assembleMultiStudyDesign(list, {}, design, size));
    QFile::remove(path("b.rtc"));
    expectRefused("Can not open design matrix file \"" + path("b.rtc") + "\" !");
    QFile::remove(path("b.fmr"));
    messages.expectWarning("ERROR - Can not open FMR file: \"" + path("b.fmr") + "\" !");
    EXPECT_FALSE(assembleMultiStudyDesign(list, {}, design, size));
    messages.expectCritical("ERROR: The multi-study design lists no runs!");
    EXPECT_FALSE(assembleMultiStudyDesign({}, {}, design, size));
    EXPECT_EQ(design.GLMPredictors(), 0);

    static_cast<void>(threeRuns(SeparatePredictors::None));
    saveDesign("b", 0, 3, {"Foot", "Hand"});
    messages.expectWarning("WARNING: Predictor names do not match!\n\nPlease check the order*");
    EXPECT_TRUE(assembleMultiStudyDesign(list, {}, design, size));
}

TEST_F(MultiStudy, SlicesOfBothFormatsAreReadFromDisk) {
    const MultiStudyList list = threeRuns(SeparatePredictors::None);
    // The second run as files of one slice each, behind their sizes.
    const QByteArray all = contentOf(path("b.stc"));
    writeFile(path("b.fmr"),
              contentOf(path("b.fmr"))
                  .replace("DataStorageFormat:             2", "DataStorageFormat:            1"));
    const QByteArray sizes("\4\0\2\0", 4);
    for (int slice = 0; slice < 3; ++slice)
        writeFile(path(QString("b%1.stc").arg(slice + 1)), sizes + all.mid(slice * 48, 48));
    QFile::remove(path("b.stc"));

    constexpr std::array runs{0, 0, 1, 1, 1, 2, 2};
    constexpr std::array volumes{0, 1, 0, 1, 2, 0, 1};
    std::vector<const int16_t*> points(7);
    const std::unique_ptr<SliceSource> source = openRunsOnDisk(list);
    ASSERT_TRUE(source);
    for (const int slice : {2, 0, 1}) {
        ASSERT_TRUE(source->loadSlice(slice, points));
        for (size_t t = 0; t < 7; ++t)
            for (int i = 0; i < 8; ++i)
                EXPECT_EQ(points[t][i], valueAt(runs[t], i % 4, i / 4, slice, volumes[t]))
                    << slice << ' ' << t;
    }
    std::vector<const int16_t*> fewer(6);
    messages.expectCritical("ERROR: Different number of time points between*");
    EXPECT_FALSE(source->loadSlice(0, fewer));

    const auto expectUnreadable = [&](const QString& message, int slice) {
        messages.expectCritical("ERROR: " + message);
        EXPECT_FALSE(source->loadSlice(slice, points));
        messages.expectCritical("ERROR: " + message);
        EXPECT_FALSE(openRunsOnDisk(list));
    };
    QFile::resize(path("c.stc"), 95);
    expectUnreadable("The .stc file holds fewer samples than its header states: " + path("c.stc"),
                     2);
    writeFile(path("b2.stc"), QByteArray("\2\0\4\0", 4) + QByteArray(48, '\0'));
    messages.expectCritical("ERROR: The .stc file has another matrix than its header states: " +
                            path("b2.stc"));
    EXPECT_FALSE(openRunsOnDisk(list));
    QFile::remove(path("b2.stc"));
    expectUnreadable("Can not find / open stc file: " + path("b2.stc") + " !", 1);
}

} // namespace

TEST(DriftTerms, BelongToOneStudyEachAndToNoCondition) {
    WholeRunDesign design;
    design.studies = {{4, "a.fmr", "a.rtc", 1}, {2, "b.fmr", "b.rtc", 1}};
    const QString level = "Study signal level (confound)";
    design.predictors = {{"", "Faces", {}}, {"", "Houses", {}}, {"", level, {}}, {"", level, {}}};
    for (int t = 0; t < 6; ++t)
        for (const float value : {0.1f * float(t), 0.5f, t < 4 ? 1.0f : 0.0f, t < 4 ? 0.0f : 1.0f})
            design.GLMDesign.push_back(value);
    WholeRunDesign cosines = design;
    ASSERT_TRUE(addDriftTerms(design, 1) && addDriftTerms(cosines, 2));
    EXPECT_EQ(design.predictors.back().name, "Study 2: Linear Trend (confound)");
    EXPECT_EQ(cosines.predictors[4].name, "Study 1: DCT-1 (confound)");
    EXPECT_EQ(conditionsOfColumns(design), (std::vector<int>{0, 1, -1, -1, -1, -1}));
    EXPECT_EQ(conditionsOfColumns(cosines), (std::vector<int>{0, 1, -1, -1, -1, -1, -1, -1}));
    const float trends[6][2] = {{-1, 0}, {-0.5f, 0}, {0, 0}, {0.5f, 0}, {0, -1}, {0, 0}};
    for (size_t t = 0; t < 6; ++t) {
        EXPECT_EQ(design.GLMDesign[t * 6], 0.1f * float(t));
        for (size_t study = 0; study < 2; ++study)
            EXPECT_EQ(design.GLMDesign[t * 6 + 4 + study], trends[t][study]) << t;
    }
    EXPECT_NEAR(cosines.GLMDesign[1 * 8 + 5], std::cos(0.25 * 3.1425 * 2), 1e-6);
    EXPECT_NEAR(cosines.GLMDesign[5 * 8 + 6], std::cos(0.5 * 3.1425), 1e-6);
    EXPECT_EQ(cosines.GLMDesign[5 * 8 + 4], 0.0f);
}
