// SPDX-License-Identifier: GPL-3.0-or-later
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

TEST_F(SettingsFile, TheSampleIsWrittenAsItStands) {
    QString sample;
    ASSERT_TRUE(readTextFile(VELO_SOURCE_DIR "/src/resources/sample_session/VCO_FacesHouses-1.vco",
                             sample));
    ASSERT_TRUE(readText(sample, SettingsUse::Inspection));
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_EQ(writtenText().toStdString(), sample.toStdString());
    // What the sample has not.
    settings.Title = "the \"first\" run";
    settings.TargetFolder = "/elsewhere/";
    settings.TR = 2100.1f;
    settings.StimulationProtocol.clear();
    settings.RealTimeProtocol = dir() + "a.rtp";
    settings.OverlayOnSRFMode = 1;
    settings.SRFFile = dir() + "a.srf";
    settings.FeedbackTargetFolder = dir();
    ASSERT_TRUE(writeSettingsFile(settings));
    const QString text = writtenText();
    for (const QString& line :
         {QString("Title:                            \"the 'first' run\"\n"),
          QString("TargetFolder:                     \"/elsewhere/\"\n"),
          QString("TR:                               2100.1\n"),
          QString("RealTimeProtocol:                 \"./a.rtp\"\nContrastFile:"),
          "SRFFile:                          \"" + dir() + "a.srf\"\n",
          QString("FeedbackTargetFolder:             \"./\"\n")})
        EXPECT_TRUE(text.contains('\n' + line)) << line.toStdString();
}

TEST_F(SettingsFile, WritesWhatItCanOfOtherFiles) {
    settings.DataType = "ANALYZE_DRIN";
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().simplified().contains("DataType: ANALYZE_DRIN FirstFileName:"));
    EXPECT_TRUE(writtenText().simplified().contains("ImageTransformation: 2"));
    EXPECT_EQ(settings.DataType, "PHILIPS_ANALYZE_DRIN");

    settings.DataType = "XYZ";
    messages.expect(MessageLevel::Critical,
                    "ERROR: Data type \"XYZ\" not supported!\n\nCheck settings file: \"" +
                        settings.settingsFilePath + "\".");
    EXPECT_FALSE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().simplified().endsWith("DataType: XYZ"));

    settings.MergeType = true;
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_TRUE(writtenText().simplified().endsWith("IFISfMRIAnalysisOptions: tdat"));

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
