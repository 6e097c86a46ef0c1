// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_fields.h"
#include "settings_fixture.h"

namespace {

/// Sets a member to a distinct value.
void setDistinct(RunSettings& settings, const SettingsField& field, int number,
                 const QString& folder) {
    const bool isFolder = field.kind == ValueKind::Folder || field.kind == ValueKind::WatchFolder;
    const auto set = [&](auto member) {
        if constexpr (std::is_same_v<decltype(member), QString RunSettings::*>)
            settings.*member = (isFolder || field.kind == ValueKind::Path ? folder : "") +
                               QString("value%1").arg(number) + (isFolder ? "/" : "");
        else if constexpr (std::is_same_v<decltype(member), float RunSettings::*>)
            settings.*member = 1.0f + float(number) / 3.0f;
        else if constexpr (!std::is_same_v<decltype(member), std::monostate>)
            settings.*member = number; // of a flag: set
    };
    std::visit(set, field.member);
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
                setDistinct(written, field, ++number, dir());
            written.settingsFilePath = settings.settingsFilePath;
            written.FileVersion = 4;
            written.MergeType = false;
            written.DataType = type;
            written.NrOfVolumes = 1000;
            written.OverlayOnVMRMode = mode;
            written.OverlayOnSRFMode = mode % 3;
            written.MotionCorrectionMethod = mode % 3;
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
    const QString sample = operatorText("sample_session");
    ASSERT_TRUE(readText(sample, SettingsUse::Inspection));
    ASSERT_TRUE(writeSettingsFile(settings));
    EXPECT_EQ(writtenText().toStdString(), sample.toStdString());
    // Entries that the sample lacks.
    settings.Title = "the \"first\" run";
    settings.TR = 2100.1f;
    ASSERT_TRUE(writeSettingsFile(settings));
    for (const char* line : {"Title:                            \"the 'first' run\"\n",
                             "TR:                               2100.1\n"})
        EXPECT_TRUE(writtenText().contains(line)) << line;
}
