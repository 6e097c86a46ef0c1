// Effects of the values of a settings file while it is read.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/first_file_names.h"
#include "run/settings/settings_paths.h"
#include "run/settings/settings_reader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <limits>

namespace {

constexpr int maximumMatrix = 4096;
constexpr int maximumSlices = 4096;

bool canBeRead(const QString& path) {
    // Opening a pipe would block until its other end is opened.
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
}

int milliseconds(int seconds) {
    constexpr qint64 longest = std::numeric_limits<int>::max();
    return int(std::clamp(qint64(seconds) * 1000, qint64(0), longest));
}

bool isMatrixSize(int size) {
    return size >= 0 && size <= maximumMatrix;
}

} // namespace

bool SettingsReader::applyEffect(FieldEffect effect) {
    switch (effect) {
    case FieldEffect::MultiRunTarget:
        return checkMultiRunTarget();
    case FieldEffect::TargetFolder:
        return createTargetFolder();
    case FieldEffect::DataType:
        return takeDataType();
    case FieldEffect::MatrixSizes:
        return checkMatrix();
    case FieldEffect::VolumesToSkip:
        return checkVolumesToSkip();
    case FieldEffect::SliceCount:
        return checkSliceCount();
    case FieldEffect::InplaneFolder:
        return checkInplaneFolder();
    default:
        deriveFrom(effect);
        return true;
    }
}

void SettingsReader::deriveFrom(FieldEffect effect) {
    switch (effect) {
    case FieldEffect::PFile:
        return derivePFile(settings_);
    case FieldEffect::FirstFile:
        return deriveFirstFile(settings_);
    case FieldEffect::DicomNames:
        return deriveDicomNames(settings_);
    case FieldEffect::InplaneFirstFile:
        return deriveInplaneFirstFile(settings_);
    case FieldEffect::ClearOverlays:
        return clearOverlays();
    case FieldEffect::SRFGroup:
        return checkMeshes();
    case FieldEffect::TimeOut:
        settings_.timeOutMilliseconds = milliseconds(settings_.TimeOutSeconds);
        return;
    case FieldEffect::ProjectName:
        settings_.projectBaseName = paths::fileName(
            paths::withoutExtension(paths::withForwardSlashes(settings_.ProjectName)));
        return;
    case FieldEffect::ForceTRDelay:
        settings_.forceTRDelayRead = true;
        return;
    case FieldEffect::InplaneFlag:
        settings_.pendingOverlayInplane = settings_.OverlayInplaneData ? 1 : -1;
        return;
    case FieldEffect::VMRGroup: {
        const bool hasKeys = settings_.OverlayOnVMRMode >= 1 && settings_.OverlayOnVMRMode <= 3;
        settings_.pendingOverlayVMR = hasKeys ? 0 : -1;
        return;
    }
    case FieldEffect::FeedbackFolder:
        if (settings_.FeedbackTargetFolder.isEmpty())
            settings_.FeedbackTargetFolder = settings_.TargetFolder;
        return;
    default:
        return;
    }
}

bool SettingsReader::checkMultiRunTarget() {
    if (!settings_.TargetFolder.isEmpty() && QDir(settings_.TargetFolder).exists())
        return true;
    return SettingsReport::failFatally(
        QStringLiteral("ERROR: Target folder  \"%1\"  does not exist!\n\nCheck \"%2\" file and/or "
                       "create target folder;\nthen rerun Velo-Cortivo.")
            .arg(settings_.TargetFolder, settings_.settingsFilePath));
}

bool SettingsReader::createTargetFolder() {
    const QString& folder = settings_.TargetFolder;
    if (report_.forRun() && !report_.forRecorded() && (folder.isEmpty() || !QDir().mkpath(folder)))
        return SettingsReport::failFatally(
            QStringLiteral("ERROR: Target folder  \"%1\"  does not exist and could not be "
                           "created!\n\nCheck \"%2\" file and/or create target folder;\nthen rerun "
                           "Velo-Cortivo.")
                .arg(folder, settings_.settingsFilePath));
    deriveFrom(FieldEffect::FeedbackFolder);
    return true;
}

bool SettingsReader::takeDataType() {
    if (!isSupportedDataType(settings_.DataType))
        return SettingsReport::failFatally(
            unsupportedDataTypeText(settings_.DataType, settings_.settingsFilePath));
    settings_.documentDataType = settings_.DataType.toUpper();
    if (settings_.documentDataType == "SIEMENSIMA")
        settings_.DataType = "SIEMENS_IMA";
    else if (settings_.documentDataType == "PHILIPSRECDATA")
        settings_.DataType = "PHILIPS_REC";
    return true;
}

bool SettingsReader::checkMatrix() {
    const bool works = settings_.MatrixSizeX != 0 && isMatrixSize(settings_.MatrixSizeX) &&
                       isMatrixSize(settings_.MatrixSizeY);
    if (works && report_.forRun())
        takePixelSize();
    return works ||
           report_.refuseForRun("ERROR: Problem reading MatrixSizeX / MatrixSizeY values. Check "
                                "respective entries in settings file!");
}

// The other types get it from their image headers.
void SettingsReader::takePixelSize() {
    const QStringList types{"PHILIPS_REC", "PHILIPSRECDATA", "ANALYZE_NW", "PHILIPS_ANALYZE_DRIN",
                            "2DSEQ_MPI"};
    if (!types.contains(settings_.documentDataType))
        return;
    const auto ratio = [](int field, int size) {
        return size == 0 ? 0.0f : float(field) / float(size);
    };
    settings_.pixelSizeX = ratio(settings_.InplaneFoVX, settings_.MatrixSizeX);
    settings_.pixelSizeY = ratio(settings_.InplaneFoVY, settings_.MatrixSizeY);
}

bool SettingsReader::checkVolumesToSkip() {
    if (settings_.NrOfVolumesToSkip < settings_.NrOfVolumes)
        return true;
    return report_.refuseForRun(
        QStringLiteral("ERROR: \"NrOfVolumesToSkip\" value (%1) must be smaller than "
                       "\"NrOfVolumes\" value (%2). Check respective entries in settings file!")
            .arg(settings_.NrOfVolumesToSkip)
            .arg(settings_.NrOfVolumes));
}

bool SettingsReader::checkSliceCount() {
    if (settings_.NrOfSlices >= 1 && settings_.NrOfSlices <= maximumSlices)
        return true;
    return report_.refuseForRun(
        QStringLiteral("ERROR: Problem reading \"NrOfSlices\" value (%1). Check respective entries "
                       "in settings file!")
            .arg(settings_.NrOfSlices));
}

bool SettingsReader::checkInplaneFolder() {
    // Unlike the other folders, an empty one becomes the root of the file system.
    if (settings_.OverlayInplaneFolder.isEmpty())
        settings_.OverlayInplaneFolder = "/";
    if (!report_.forRun() || report_.forReload() || QDir(settings_.OverlayInplaneFolder).exists())
        return true;
    return SettingsReport::failFatally(
        QStringLiteral("ERROR: Inplane data folder  \"%1\"  does not exist!\n\nCheck \"%2\" file "
                       "and/or create target folder;\nthen rerun Velo-Cortivo.")
            .arg(settings_.OverlayInplaneFolder, settings_.settingsFilePath));
}

// The modes are cleared with their files: a file of version 1 has neither.
void SettingsReader::clearOverlays() {
    for (QString RunSettings::*file :
         {&RunSettings::FMRVMRAlignVMRPosFile, &RunSettings::IntraSessionVMRFile,
          &RunSettings::FMRVMRAlignFMRPosFile, &RunSettings::ACPCTransformationFile,
          &RunSettings::ACPCVMRFile, &RunSettings::TalairachCerebrumBorderFile,
          &RunSettings::TalairachVMRFile, &RunSettings::SRFFile, &RunSettings::SRFFileLH,
          &RunSettings::SRFFileRH})
        (settings_.*file).clear();
    settings_.OverlayOnVMRMode = 0;
    settings_.OverlayOnSRFMode = 0;
    settings_.pendingOverlayVMR = -1;
    settings_.pendingOverlaySRF = -1;
}

void SettingsReader::checkMeshes() {
    bool found = false;
    if (settings_.OverlayOnSRFMode == 1)
        found = canBeRead(settings_.SRFFile);
    else if (settings_.OverlayOnSRFMode == 2)
        found = canBeRead(settings_.SRFFileLH) && canBeRead(settings_.SRFFileRH);
    else
        return;
    if (!found)
        settings_.OverlayOnSRFMode = 0;
    settings_.pendingOverlaySRF = found ? 0 : -1;
}
