// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/saved_run.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

namespace {

class SavedRunReader : public VolumeReader {
public:
    SavedRunReader(const IntakeContext& context, const FMRHeader& header, const QString& path)
        : context_(context), header_(header), path_(path) {}

    [[nodiscard]] bool prepare() override { return sizesAgree(context_.settings, header_, path_); }
    /// As it was measured; where its file is gone, as it was analysed.
    [[nodiscard]] bool readFirstVolume() override {
        FMRProject saved;
        static_cast<FMRHeader&>(saved) = header_;
        saved.projectPath = path_;
        saved.targetFolder = paths::folderWithSlash(path_);
        if (fileExists(firstVolumeFileName(saved)) && ::readFirstVolume(saved)) {
            context_.project.firstVolume = std::move(saved.firstVolume);
            return true;
        }
        return read(0, context_.project.firstVolume.span());
    }
    [[nodiscard]] bool readHeaders() override {
        restoreHeader(context_.project, header_);
        return true;
    }
    [[nodiscard]] bool readVolume(int volume) override {
        if (volume < header_.NrOfVolumes)
            return read(volume, context_.project.volumes[size_t(volume)]);
        atEnd_ = true;
        return false;
    }
    [[nodiscard]] bool isAtEnd() const override { return atEnd_; }

private:
    [[nodiscard]] bool read(int volume, std::span<int16_t> samples) {
        // A run whose files have gone meanwhile must not end the program.
        const QString fault = savedDataFault(header_, path_);
        if (!fault.isEmpty())
            return showModelessWarning(fault), false;
        FMRHeader header;
        if (!readSTCVolume(volume, path_, header, volume_) || volume_.size() != samples.size())
            return false;
        std::copy_n(volume_.data(), samples.size(), samples.data());
        return true;
    }

    IntakeContext context_;
    FMRHeader header_;
    QString path_;
    Volume volume_;
    bool atEnd_ = false;
};

} // namespace

QString savedRunFault(const FMRHeader& header, const QString& path) {
    if (hasTimesOfARun(header))
        return savedDataFault(header, path);
    return QStringLiteral("ERROR: \"%1\" is damaged: it states a TR of %2 ms and %3 skipped "
                          "volumes.")
        .arg(path, QString::number(double(header.TR)), QString::number(header.NrOfSkippedVolumes));
}

bool SavedRun::open() {
    // With the positions of its slices, for the anatomy.
    if (!readFMRFile(options_.path, FMRScope::Project, header_))
        return false;
    const QString fault = savedRunFault(header_, options_.path);
    if (!fault.isEmpty())
        showWarning(fault);
    return fault.isEmpty();
}

bool SavedRun::readSettings(RunSettings& settings, const std::function<void()>& stopTimer) {
    settings.settingsFilePath = options_.settingsFile;
    if (!readSettingsForPlaying(settings, stopTimer))
        return false;
    // A run that was stopped has fewer volumes than its design.
    const int planned = settings.nrOfAnalysedVolumes();
    const int analysed = isOwn_ ? std::max(header_.NrOfVolumes, planned) : planned;
    settings.NrOfVolumesToSkip = header_.NrOfSkippedVolumes;
    settings.NrOfVolumes = analysed + settings.NrOfVolumesToSkip;
    settings.TR = header_.TR;
    const QString recorded = header_.ProtocolFiles.isEmpty()
                                 ? QString()
                                 : paths::join(paths::folderWithSlash(options_.path),
                                               paths::fileName(header_.ProtocolFiles.first()));
    if (isOwn_) {
        settings.MotionCorrection = false;
        settings.SpatialGaussianSmoothing = false;
    }
    if (isOwn_ && fileExists(recorded)) {
        settings.TDatFile.clear();
        settings.RealTimeProtocol.clear();
        settings.StimulationProtocol = recorded;
    }
    return prepareForPlaying(settings, options_, OutsideFeedback::IntoResults);
}

std::unique_ptr<VolumeReader> SavedRun::makeReader(const IntakeContext& context) {
    return std::make_unique<SavedRunReader>(context, header_, options_.path);
}
