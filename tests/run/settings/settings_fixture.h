// Settings files in a temporary folder, with scripted messages and intercepted program ends.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text_reading.h"
#include "run/settings/settings_file.h"
#include "support/scripted_messages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

class SettingsFile : public testing::Test {
protected:
    SettingsFile() {
        settings.settingsFilePath = folder.filePath("run-1.vco");
        QDir(folder.path()).mkdir("in");
    }
    QString dir() const { return folder.path() + '/'; }

    void write(const QString& name, const QString& text) const {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    bool readText(const QString& text, SettingsUse use) {
        write("run-1.vco", text);
        return readSettingsFile(settings, use, [this] { ++timerStops; });
    }

    [[nodiscard]] QString writtenText() const {
        QString text;
        EXPECT_TRUE(readTextFile(settings.settingsFilePath, text));
        return text;
    }

    /// A file as an operator writes it, with the keys of its version and type.
    static QString fileText(const QString& type, const QString& block, int version = 4) {
        const auto from = [version](int first, const QString& text) {
            return version >= first ? text : QString();
        };
        QString text = QString("FileVersion: %1 MergeType: 0\nTitle: \"a run\" ").arg(version);
        text += "ParadigmHelpFile: \"\" IFISfMRIAnalysisTests: x IFISfMRIAnalysisOptions: y\n"
                "RawDataBigEndian: 0 ";
        text += from(3, "ShowGODlgAfterPreparation: 1 ");
        text += "WatchFolder: \"./in\" TargetFolder: \"./out\"\nDataType: " + type + '\n' + block;
        text += "\nTimeOutSeconds: 7 MatrixSizeX: 64 MatrixSizeY: 32 ";
        if (type.toUpper() == "SIEMENS_DICOM_MOSAIC")
            text += "MosaicResolutionX: 384 MosaicResolutionY: 320 ";
        if (type.toUpper().startsWith("SIEMENS") && !type.toUpper().contains("DICOM"))
            text += "SiemensMosaicSequence: 1 SiemensMosaicResolution: 256 "
                    "SiemensFixedRunNumber: 1 ";
        text += "NrOfVolumes: 50 NrOfVolumesToSkip: 3 NrOfSlices: 9\nSlicePrefix: \"s-\" "
                "ProjectName: \"study.fmr\" TR: 1500.5 InterSliceTime: 60\n";
        text += from(3, "ROIColorsFile: \"./roi.txt\" MultiSliceROISelection: 2 ");
        text += "Threshold: 2.5 ClusterSizePixels: 6 NrOfColumns: 3 NrOfRows: 3 ";
        text += from(2, "ForceTRDelay: 1 ");
        text += "StimulationProtocol: \".\\a.prt\"\n";
        text += from(3, "ContrastFile: \"\" AutoContrastGenerationLevel: 1 "
                        "DriftConfoundPredictors: 2 ");
        text += "MotionCorrection: 0 ";
        text += from(3, "SpatialGaussianSmoothing: 1 SpatialSmoothingFWHM: 5 ");
        text += "OverlayInplaneData: 0\n";
        if (version == 1)
            return text + "FlipSliceOrder: 2";
        text += version < 4 ? "FlipSliceOrderInMultiSliceView: 7 " : "";
        return text + "FlipSliceOrderInVolumeView: 3 IntraSessionMotionCorrection: 0 "
                      "OverlayOnVMRMode: 0 OverlayOnSRFMode: 0 FeedbackTargetFolder: \"./fb\"";
    }
    static QString geometryText() {
        return "InplaneFoVX: 128 InplaneFoVY: 96 SliceThickness: 3.5 GapThickness: 0";
    }
    static QString dicomText(const QString& firstName, const QString& delimiter = "-") {
        return QString(
                   "FirstFileName: \"%1\" DicomNameDelimiter: \"%2\" DicomNameExtension: \"dcm\" "
                   "DicomFirstVolumeNr: 9 DicomFirstImageNr: 3 ")
                   .arg(firstName, delimiter) +
               geometryText();
    }
    static QString geText() { return fileText("GE_I", "GESeriesNr: 4 GEFirstImageNr: 5"); }
    static QString replaced(QString text, const QString& before, const QString& after) {
        EXPECT_TRUE(text.contains(before)) << before.toStdString();
        return text.replace(before, after);
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    RunSettings settings = defaultRunSettings();
    int timerStops = 0;
};
