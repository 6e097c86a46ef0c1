// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_fields.h"

namespace {

using Condition = bool (*)(const RunSettings&);

// An entry of the table below, with chained setters.
struct Entry : SettingsField {
    Entry(ValueKind valueKind, const char* name, SettingsMember where) {
        kind = valueKind;
        key = QString::fromLatin1(name);
        member = where;
        writtenRelative = valueKind == ValueKind::Path || valueKind == ValueKind::Folder;
    }
    Entry& onlyIf(Condition entryCondition) {
        condition = entryCondition;
        return *this;
    }
    Entry& since(int version) {
        firstVersion = version;
        return *this;
    }
    Entry& until(int version) {
        lastVersion = version;
        return *this;
    }
    Entry& then(FieldEffect fieldEffect) {
        effect = fieldEffect;
        return *this;
    }
    Entry& within(double lowest, double highest) {
        range = ValueRange{lowest, highest};
        return *this;
    }
    Entry& notZero() {
        refusesZero = true;
        return *this;
    }
    Entry& present(Presence fieldPresence) {
        presence = fieldPresence;
        return *this;
    }
    Entry& asItStands() {
        writtenRelative = false;
        return *this;
    }
    Entry& blankLine() {
        blankLineAfter = true;
        return *this;
    }
};

using S = RunSettings;
using enum ValueKind;

// Larger sizes are typing errors. Within these limits the product of matrix, slices and volumes
// fits into 64 bits.
constexpr double maximumMatrix = 4096;
constexpr double maximumMosaic = 16384;
constexpr double maximumVolumes = 1000000;
constexpr double maximumThreads = 1024;
constexpr double hourMilliseconds = 3600000;

bool typeIsOneOf(const RunSettings& settings, std::initializer_list<const char*> types) {
    const QString type = settings.DataType.toUpper();
    return std::any_of(types.begin(), types.end(),
                       [&](const char* name) { return type == QLatin1String(name); });
}

bool multiRun(const S& s) {
    return s.MergeType;
}
bool singleRun(const S& s) {
    return !s.MergeType;
}
bool siemens(const S& s) {
    return singleRun(s) && typeIsOneOf(s, {"SIEMENS_IMA", "SIEMENSIMA"});
}
bool ge(const S& s) {
    return singleRun(s) && typeIsOneOf(s, {"GE_I", "GE_X_DICOM"});
}
bool geRaw(const S& s) {
    return singleRun(s) && typeIsOneOf(s, {"GE_STANFORD"});
}
bool mosaic(const S& s) {
    return singleRun(s) && typeIsOneOf(s, {"SIEMENS_DICOM_MOSAIC"});
}
bool dicom(const S& s) {
    return mosaic(s) || (singleRun(s) && typeIsOneOf(s, {"DICOM"}));
}
bool analyzeDrin(const S& s) {
    return singleRun(s) && typeIsOneOf(s, {"PHILIPS_ANALYZE_DRIN"});
}
bool firstFile(const S& s) {
    return dicom(s) || analyzeDrin(s) ||
           (singleRun(s) &&
            typeIsOneOf(s, {"PHILIPS_REC", "PHILIPSRECDATA", "ANALYZE_NW", "2DSEQ_MPI"}));
}
bool inplane(const S& s) {
    return singleRun(s) && s.OverlayInplaneData;
}
bool intraSession(const S& s) {
    return singleRun(s) && s.IntraSessionMotionCorrection;
}
bool nativeVMR(const S& s) {
    return singleRun(s) && s.OverlayOnVMRMode == 1;
}
bool acpcVMR(const S& s) {
    return singleRun(s) && s.OverlayOnVMRMode == 2;
}
bool talairachVMR(const S& s) {
    return singleRun(s) && s.OverlayOnVMRMode == 3;
}
bool transformedVMR(const S& s) {
    return acpcVMR(s) || talairachVMR(s);
}
bool anyVMR(const S& s) {
    return nativeVMR(s) || transformedVMR(s);
}
bool alignedDrin(const S& s) {
    return anyVMR(s) && analyzeDrin(s);
}
bool oneMesh(const S& s) {
    return singleRun(s) && s.OverlayOnSRFMode == 1;
}
bool twoMeshes(const S& s) {
    return singleRun(s) && s.OverlayOnSRFMode == 2;
}

using Table = std::vector<SettingsField>;

Entry groupEnd(FieldEffect effect = FieldEffect::None) {
    return Entry(None, "", {}).onlyIf(singleRun).then(effect).blankLine();
}

void addHead(Table& t) {
    t.push_back(Entry(Integer, "FileVersion:", &S::FileVersion).blankLine());
    t.push_back(Entry(FlagPositive, "MergeType:", &S::MergeType).blankLine());
    t.push_back(Entry(Text, "Title:", &S::Title).blankLine());
    t.push_back(Entry(Path, "ParadigmHelpFile:", &S::ParadigmHelpFile));
    t.push_back(Entry(Word, "IFISfMRIAnalysisTests:", &S::IFISfMRIAnalysisTests));
    t.push_back(Entry(Word, "IFISfMRIAnalysisOptions:", &S::IFISfMRIAnalysisOptions).blankLine());
}

void addMultiRun(Table& t) {
    const auto add = [&](Entry entry) { t.push_back(entry.onlyIf(multiRun)); };
    add(Entry(Flag, "MergeAverageTimeCourse:", &S::MergeAverageTimeCourse));
    add(Entry(Flag, "MergeSeparatePredictors:", &S::MergeSeparatePredictors));
    add(Entry(Folder, "TargetFolder:", &S::TargetFolder).then(FieldEffect::MultiRunTarget));
    add(Entry(Text, "ProjectName:", &S::ProjectName).then(FieldEffect::ProjectName));
    add(Entry(MergeFiles, "MergeFiles:", {}));
}

void addFolders(Table& t) {
    const auto add = [&](Entry entry) { t.push_back(entry.onlyIf(singleRun)); };
    add(Entry(FlagOne, "RawDataBigEndian:", &S::RawDataBigEndian).blankLine());
    add(Entry(Flag, "ShowGODlgAfterPreparation:", &S::ShowGODlgAfterPreparation)
            .since(3)
            .blankLine());
    add(Entry(WatchFolder, "WatchFolder:", &S::WatchFolder));
    add(Entry(Folder, "TargetFolder:", &S::TargetFolder)
            .then(FieldEffect::TargetFolder)
            .blankLine());
    add(Entry(Word, "DataType:", &S::DataType).then(FieldEffect::DataType).blankLine());
}

// The blocks of all types in one list: types that share keys have them in the same order.
void addTypeBlock(Table& t) {
    const auto add = [&](Condition condition, Entry entry) {
        t.push_back(entry.onlyIf(condition));
    };
    add(siemens, Entry(Integer, "SiemensPatientID:", &S::SiemensPatientID));
    add(siemens, Entry(Integer, "SiemensFirstStudyNr:", &S::SiemensFirstStudyNr));
    add(siemens, Entry(Integer, "SiemensFirstImageNr:", &S::SiemensFirstImageNr));
    add(ge, Entry(Integer, "GESeriesNr:", &S::GESeriesNr));
    add(ge, Entry(Integer, "GEFirstImageNr:", &S::GEFirstImageNr));
    add(geRaw, Entry(Text, "PFileHeader:", &S::PFileHeader).then(FieldEffect::PFile));
    add(geRaw, Entry(Integer, "SliceTimeLooping:", &S::SliceTimeLooping));
    add(firstFile, Entry(Text, "FirstFileName:", &S::FirstFileName).then(FieldEffect::FirstFile));
    add(dicom, Entry(Text, "DicomNameDelimiter:", &S::DicomNameDelimiter));
    add(dicom, Entry(Text, "DicomNameExtension:", &S::DicomNameExtension));
    add(dicom, Entry(Integer, "DicomFirstVolumeNr:", &S::DicomFirstVolumeNr)
                   .then(FieldEffect::DicomNames));
    add(dicom, Entry(Integer, "DicomFirstImageNr:", &S::DicomFirstImageNr));
    add(firstFile, Entry(Integer, "InplaneFoVX:", &S::InplaneFoVX));
    add(firstFile, Entry(Integer, "InplaneFoVY:", &S::InplaneFoVY));
    add(firstFile, Entry(Real, "SliceThickness:", &S::SliceThickness));
    add(firstFile, Entry(Real, "GapThickness:", &S::GapThickness));
    add(analyzeDrin, Entry(Integer, "ImageTransformation:", &S::ImageTransformation).since(4));
    t.push_back(groupEnd());
}

void addSizes(Table& t) {
    const auto add = [&](Condition condition, Entry entry) {
        t.push_back(entry.onlyIf(condition));
    };
    add(singleRun, Entry(Integer, "TimeOutSeconds:", &S::TimeOutSeconds)
                       .then(FieldEffect::TimeOut)
                       .blankLine());
    add(singleRun, Entry(Integer, "MatrixSizeX:", &S::MatrixSizeX).notZero());
    add(singleRun,
        Entry(Integer, "MatrixSizeY:", &S::MatrixSizeY).then(FieldEffect::MatrixSizes).blankLine());
    add(mosaic,
        Entry(Integer, "MosaicResolutionX:", &S::MosaicResolutionX).within(0, maximumMosaic));
    add(mosaic, Entry(Integer, "MosaicResolutionY:", &S::MosaicResolutionY)
                    .within(0, maximumMosaic)
                    .blankLine());
    add(siemens, Entry(Flag, "SiemensMosaicSequence:", &S::SiemensMosaicSequence));
    add(siemens, Entry(Integer, "SiemensMosaicResolution:", &S::SiemensMosaicResolution)
                     .within(0, maximumMosaic)
                     .blankLine());
    add(siemens, Entry(Flag, "SiemensFixedRunNumber:", &S::SiemensFixedRunNumber).blankLine());
    add(singleRun,
        Entry(Integer, "NrOfVolumes:", &S::NrOfVolumes).within(1, maximumVolumes).notZero());
    add(singleRun, Entry(Integer, "NrOfVolumesToSkip:", &S::NrOfVolumesToSkip)
                       .then(FieldEffect::VolumesToSkip)
                       .within(0, maximumVolumes)
                       .blankLine());
    add(singleRun, Entry(Integer, "NrOfSlices:", &S::NrOfSlices)
                       .then(FieldEffect::SliceCount)
                       .notZero()
                       .blankLine());
}

void addNamesAndTimes(Table& t) {
    const auto add = [&](Entry entry) { t.push_back(entry.onlyIf(singleRun)); };
    add(Entry(Text, "SlicePrefix:", &S::SlicePrefix));
    add(Entry(Text, "ProjectName:", &S::ProjectName).then(FieldEffect::ProjectName).blankLine());
    add(Entry(Real, "TR:", &S::TR).within(1, hourMilliseconds).notZero());
    add(Entry(Real, "InterSliceTime:", &S::InterSliceTime).blankLine());
    add(Entry(Path, "ROIColorsFile:", &S::ROIColorsFile)
            .since(3)
            .present(Presence::SkipsOtherKey)
            .blankLine());
    add(Entry(Integer, "MultiSliceROISelection:", &S::MultiSliceROISelection).since(3).blankLine());
    add(Entry(Real, "Threshold:", &S::Threshold));
    add(Entry(Integer, "ClusterSizePixels:", &S::ClusterSizePixels).blankLine());
    add(Entry(Integer, "NrOfColumns:", &S::NrOfColumns));
    add(Entry(Integer, "NrOfRows:", &S::NrOfRows).blankLine());
    add(Entry(Flag, "ForceTRDelay:", &S::ForceTRDelay)
            .since(2)
            .then(FieldEffect::ForceTRDelay)
            .blankLine());
}

void addAnalysis(Table& t) {
    const auto add = [&](Entry entry) { t.push_back(entry.onlyIf(singleRun)); };
    add(Entry(Protocol, "", {}));
    add(Entry(Path, "ContrastFile:", &S::ContrastFile).since(3).blankLine());
    add(Entry(Integer, "AutoContrastGenerationLevel:", &S::AutoContrastGenerationLevel)
            .since(3)
            .blankLine());
    add(Entry(Integer, "DriftConfoundPredictors:", &S::DriftConfoundPredictors)
            .since(3)
            .blankLine());
    add(Entry(Flag, "MotionCorrection:", &S::MotionCorrection).blankLine());
    add(Entry(Flag, "SpatialGaussianSmoothing:", &S::SpatialGaussianSmoothing).since(3));
    add(Entry(Real, "SpatialSmoothingFWHM:", &S::SpatialSmoothingFWHM).since(3).blankLine());
}

void addInplane(Table& t) {
    const auto add = [&](Entry entry) { t.push_back(entry.onlyIf(inplane)); };
    t.push_back(Entry(Flag, "OverlayInplaneData:", &S::OverlayInplaneData)
                    .onlyIf(singleRun)
                    .then(FieldEffect::InplaneFlag));
    add(Entry(Folder, "OverlayInplaneFolder:", &S::OverlayInplaneFolder)
            .then(FieldEffect::InplaneFolder));
    add(Entry(Word, "OverlayInplaneDataType:", &S::OverlayInplaneDataType));
    add(Entry(Text, "OverlayInplaneFirstFileName:", &S::OverlayInplaneFirstFileName)
            .then(FieldEffect::InplaneFirstFile));
    add(Entry(Integer, "OverlayInplaneMatrixSizeX:", &S::OverlayInplaneMatrixSizeX)
            .within(0, maximumMatrix));
    add(Entry(Integer, "OverlayInplaneMatrixSizeY:", &S::OverlayInplaneMatrixSizeY)
            .within(0, maximumMatrix));
    t.push_back(groupEnd(FieldEffect::ClearOverlays));
}

// In versions 2 and 3 the value for the volume view overwrites the one before it.
void addFlip(Table& t) {
    const auto add = [&](const char* key) {
        return Entry(Integer, key, &S::FlipSliceOrder).onlyIf(singleRun);
    };
    t.push_back(add("FlipSliceOrder:").until(1).present(Presence::OptionalAtEnd));
    t.push_back(add("FlipSliceOrderInMultiSliceView:").since(2).until(3));
    t.push_back(add("FlipSliceOrderInVolumeView:").since(2).blankLine());
}

void addVMR(Table& t) {
    const auto add = [&](Condition condition, Entry entry) {
        t.push_back(entry.onlyIf(condition).since(std::max(entry.firstVersion, 2)));
    };
    add(singleRun, Entry(Integer, "OverlayOnVMRMode:", &S::OverlayOnVMRMode));
    add(anyVMR, Entry(Path, "FMRVMRAlignVMRPosFile:", &S::FMRVMRAlignVMRPosFile));
    add(nativeVMR, Entry(Path, "IntraSessionVMRFile:", &S::IntraSessionVMRFile));
    add(alignedDrin, Entry(Path, "FMRVMRAlignFMRPosFile:", &S::FMRVMRAlignFMRPosFile).since(4));
    add(transformedVMR, Entry(Path, "ACPCTransformationFile:", &S::ACPCTransformationFile));
    add(acpcVMR, Entry(Path, "ACPCVMRFile:", &S::ACPCVMRFile));
    add(talairachVMR, Entry(Path, "TalairachCerebrumBorderFile:", &S::TalairachCerebrumBorderFile));
    add(talairachVMR, Entry(Path, "TalairachVMRFile:", &S::TalairachVMRFile));
    t.push_back(groupEnd(FieldEffect::VMRGroup).since(2));
}

void addMeshesAndFeedback(Table& t) {
    const auto add = [&](Condition condition, Entry entry) {
        t.push_back(entry.onlyIf(condition).since(2));
    };
    add(singleRun, Entry(Integer, "OverlayOnSRFMode:", &S::OverlayOnSRFMode));
    add(oneMesh, Entry(Path, "SRFFile:", &S::SRFFile).asItStands());
    add(twoMeshes, Entry(Path, "SRFFileLH:", &S::SRFFileLH));
    add(twoMeshes, Entry(Path, "SRFFileRH:", &S::SRFFileRH));
    t.push_back(groupEnd(FieldEffect::SRFGroup).since(2));
    add(singleRun, Entry(Folder, "FeedbackTargetFolder:", &S::FeedbackTargetFolder)
                       .present(Presence::OptionalAtEnd)
                       .then(FieldEffect::FeedbackFolder));
}

void addIntraSession(Table& t) {
    t.push_back(Entry(Flag, "IntraSessionMotionCorrection:", &S::IntraSessionMotionCorrection)
                    .onlyIf(singleRun)
                    .since(2));
    t.push_back(
        Entry(Path, "IntraSessionMotionCorrectionFile:", &S::IntraSessionMotionCorrectionFile)
            .onlyIf(intraSession)
            .since(2));
    t.push_back(groupEnd().since(2));
}

// Keys of this program's own, behind all that others know. New ones come last.
void addExtensions(Table& t) {
    const auto add = [&](Entry entry) {
        t.push_back(entry.onlyIf(singleRun).since(2).present(Presence::Extension));
    };
    add(Entry(Integer, "MotionCorrectionMethod:", &S::MotionCorrectionMethod).within(0, 2));
    add(Entry(Integer, "NrOfThreads:", &S::NrOfThreads).within(0, maximumThreads));
}

Table makeTable() {
    Table table;
    for (const auto addGroup :
         {addHead, addMultiRun, addFolders, addTypeBlock, addSizes, addNamesAndTimes, addAnalysis,
          addInplane, addFlip, addIntraSession, addVMR, addMeshesAndFeedback, addExtensions})
        addGroup(table);
    return table;
}

} // namespace

bool SettingsField::applies(const RunSettings& settings) const {
    // A version below 1 is read as version 1.
    const int version = std::max(settings.FileVersion, 1);
    return version >= firstVersion && version <= lastVersion &&
           (condition == nullptr || condition(settings));
}

std::span<const SettingsField> settingsFields() {
    static const Table table = makeTable();
    return table;
}

bool isSupportedDataType(const QString& dataType) {
    RunSettings settings;
    settings.DataType = dataType;
    return siemens(settings) || ge(settings) || geRaw(settings) || firstFile(settings) ||
           typeIsOneOf(settings, {"GE_HDXT_DICOM"});
}
