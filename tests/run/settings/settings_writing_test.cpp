// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text_reading.h"
#include "run/settings/settings_fields.h"
#include "settings_fixture.h"

namespace {

/// Gives a member a value of its own, and compares members of two settings.
struct Distinct {
    int number;
    ValueKind kind;
    QString folder;
    void operator()(RunSettings&, std::monostate) const {}
    void operator()(RunSettings& s, int RunSettings::*member) const { s.*member = number; }
    void operator()(RunSettings& s, bool RunSettings::*member) const { s.*member = true; }
    void operator()(RunSettings& s, float RunSettings::*member) const {
        s.*member = 1.0f + float(number) / 3.0f;
    }
    void operator()(RunSettings& s, QString RunSettings::*member) const {
        const QString name = "value" + QString::number(number);
        s.*member = kind == ValueKind::Folder || kind == ValueKind::WatchFolder
                        ? folder + name + '/'
                    : kind == ValueKind::Path ? folder + name
                                              : name;
    }
};

bool sameMember(const SettingsField& field, const RunSettings& a, const RunSettings& b) {
    return std::visit(
        [&](auto member) {
            if constexpr (std::is_same_v<decltype(member), std::monostate>)
                return true;
            else
                return a.*member == b.*member;
        },
        field.member);
}

} // namespace

TEST_F(SettingsFile, EveryFieldSurvivesWritingAndReading) {
    for (const char* type :
         {"SIEMENS_IMA", "GE_HDXT_DICOM", "GE_I", "GE_STANFORD", "PHILIPS_REC",
          "PHILIPS_ANALYZE_DRIN", "2DSEQ_MPI", "DICOM", "SIEMENS_DICOM_MOSAIC"}) {
        for (int mode = 0; mode <= 3; ++mode) {
            RunSettings written;
            int number = 1;
            for (const SettingsField& field : settingsFields())
                std::visit(
                    [&](auto member) {
                        Distinct{++number, field.kind, dir()}(written, member);
                    },
                    field.member);
            written.settingsFilePath = settings.settingsFilePath;
            written.FileVersion = 4;
            written.MergeType = false;
            written.DataType = type;
            written.NrOfVolumes = 1000;
            written.OverlayOnVMRMode = mode;
            written.OverlayOnSRFMode = mode % 3;
            written.FirstFileName = "run-0003-0001.dcm";
            written.DicomNameDelimiter = "-";
            written.DicomFirstVolumeNr = 3;
            written.SRFFile = dir() + "m.srf";
            for (const QString& mesh : {written.SRFFile, written.SRFFileLH, written.SRFFileRH})
                write(QDir(dir()).relativeFilePath(mesh), "x");
            QDir().mkpath(written.OverlayInplaneFolder);
            ASSERT_TRUE(writeSettingsFile(written));
            RunSettings read;
            read.settingsFilePath = settings.settingsFilePath;
            ASSERT_TRUE(readSettingsFile(read, SettingsUse::Run, {})) << type;
            for (const SettingsField& field : settingsFields())
                EXPECT_TRUE(!field.applies(read) || sameMember(field, written, read))
                    << type << ", mode " << mode << ": " << field.key.toStdString();
        }
    }
}

TEST_F(SettingsFile, IsWrittenInItsLayout) {
    applyDataTypeDefaults(settings, "SIEMENS_DICOM_MOSAIC");
    settings.Title = "the \"first\" run";
    settings.WatchFolder = dir() + "in/";
    settings.TargetFolder = "/elsewhere/";
    settings.TR = 2100.1f;
    settings.RealTimeProtocol = dir() + "a.rtp";
    settings.OverlayOnSRFMode = 1;
    settings.SRFFile = dir() + "a.srf";
    settings.FeedbackTargetFolder = dir();
    ASSERT_TRUE(writeSettingsFile(settings));
    QString text;
    ASSERT_TRUE(readTextFile(settings.settingsFilePath, text));
    const QString expected = R"(
FileVersion:                      4

MergeType:                        0

Title:                            "the 'first' run"

ParadigmHelpFile:                 ""
IFISfMRIAnalysisTests:            tdat
IFISfMRIAnalysisOptions:          tdat

RawDataBigEndian:                 0

ShowGODlgAfterPreparation:        0

WatchFolder:                      "./in/"
TargetFolder:                     "/elsewhere/"

DataType:                         SIEMENS_DICOM_MOSAIC

FirstFileName:                    "001_000004_000001.dcm"
DicomNameDelimiter:               "_"
DicomNameExtension:               "dcm"
DicomFirstVolumeNr:               1
DicomFirstImageNr:                1
InplaneFoVX:                      220
InplaneFoVY:                      220
SliceThickness:                   4
GapThickness:                     1

TimeOutSeconds:                   10

MatrixSizeX:                      64
MatrixSizeY:                      64

MosaicResolutionX:                384
MosaicResolutionY:                384

NrOfVolumes:                      100
NrOfVolumesToSkip:                2

NrOfSlices:                       25

SlicePrefix:                      "untitled-"
ProjectName:                      "untitled"

TR:                               2100.1
InterSliceTime:                   80

ROIColorsFile:                    ""

MultiSliceROISelection:           1

Threshold:                        3
ClusterSizePixels:                4

NrOfColumns:                      5
NrOfRows:                         5

ForceTRDelay:                     0

RealTimeProtocol:                 "./a.rtp"
ContrastFile:                     ""

AutoContrastGenerationLevel:      2

DriftConfoundPredictors:          1

MotionCorrection:                 1

SpatialGaussianSmoothing:         0
SpatialSmoothingFWHM:             4

OverlayInplaneData:               0

FlipSliceOrderInVolumeView:       1

IntraSessionMotionCorrection:     0

OverlayOnVMRMode:                 0

OverlayOnSRFMode:                 1
SRFFile:                          ")" +
                             dir() + R"(a.srf"

FeedbackTargetFolder:             "./"
)";
    EXPECT_EQ(text.split('\n'), expected.split('\n'));
}

TEST_F(SettingsFile, WritesWhatItCanOfOtherFiles) {
    const auto writtenText = [this] {
        QString text;
        EXPECT_TRUE(readTextFile(settings.settingsFilePath, text));
        return text.simplified();
    };
    settings.DataType = "ANALYZE_DRIN";
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().contains("DataType: ANALYZE_DRIN FirstFileName:"));
    EXPECT_TRUE(writtenText().contains("ImageTransformation: 2"));
    EXPECT_EQ(settings.DataType, "PHILIPS_ANALYZE_DRIN");

    settings.DataType = "XYZ";
    messages.expect(MessageLevel::Critical,
                    "ERROR: Data type \"XYZ\" not supported!\n\nCheck settings file: \"" +
                        settings.settingsFilePath + "\".");
    EXPECT_FALSE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().endsWith("DataType: XYZ"));

    settings.MergeType = true;
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().endsWith("IFISfMRIAnalysisOptions: tdat"));

    settings.settingsFilePath = dir() + "gone/run.vco";
    messages.expect(MessageLevel::Warning, "WARNING: Can not open VCO settings file for writing: " +
                                               dir() + "gone/run.vco");
    EXPECT_FALSE(writeSettingsFile(settings));
}

TEST_F(SettingsFile, TellsTheProjectOfAnotherFile) {
    write("a-1.vco", geText().replace("./out", "\\out").replace("study.fmr", "p"));
    EXPECT_EQ(resolveProjectPath("a-1", dir()), "/out/p");
    EXPECT_EQ(resolveProjectPath(dir() + "a-1.vco", "/else/"), "/out/p");
    write("b.vco", "TARGETFOLDER \"./out\" ProjectName: \"/x/p.fmr\"");
    EXPECT_EQ(resolveProjectPath("b", dir()), "/x/p.fmr");
    write("c.vco", "TargetFolder: \"./out\" ProjectName: \"p\"");
    EXPECT_EQ(resolveProjectPath("c", dir()), dir() + "out/p");
    write("d.vco", "TargetFolder: \"/out\" ProjectName: ");
    EXPECT_EQ(resolveProjectPath("d", dir()), "");
    messages.expect(MessageLevel::Warning, "ERROR: \"" + dir() + "gone.vco\" file not found!");
    EXPECT_EQ(resolveProjectPath("gone", dir()), "");
}
