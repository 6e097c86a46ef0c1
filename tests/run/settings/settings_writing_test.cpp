// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_fields.h"
#include "settings_fixture.h"

namespace {

/// Gives a member a value of its own.
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
            const QString text = writtenText();
            ASSERT_TRUE(writeSettingsFile(read));
            EXPECT_EQ(writtenText().toStdString(), text.toStdString()) << type << ", mode " << mode;
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
    ASSERT_TRUE(writeSettingsFile(settings));
    for (const char* line : {"Title:                            \"the 'first' run\"\n",
                             "TargetFolder:                     \"/elsewhere/\"\n",
                             "TR:                               2100.1\n"})
        EXPECT_TRUE(writtenText().contains(line)) << line;
}
