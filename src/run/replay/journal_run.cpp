// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_run.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/loop/run_protocol.h"
#include "run/replay/journal_description.h"
#include "run/replay/run_journal.h"
#include "run/settings/settings_file.h"

#include <algorithm>
#include <utility>

/// Gives the volumes of the journal; for a run that goes on, those of the scanner after them.
class JournalReader : public VolumeReader {
public:
    JournalReader(JournalRun& run, const IntakeContext& context,
                  std::unique_ptr<VolumeReader> scanner)
        : run_(run), context_(context), scanner_(std::move(scanner)) {}

    [[nodiscard]] bool prepare() override {
        return sizesAgree(context_.settings, run_.head_.project, run_.options_.path) &&
               (!scanner_ || scanner_->prepare());
    }
    [[nodiscard]] bool readFirstVolume() override {
        return scanner_ ? scanner_->readFirstVolume()
                        : copySamples(run_.firstVolume_, context_.project.firstVolume.span());
    }
    [[nodiscard]] bool readHeaders() override {
        if (scanner_ && (!scannerHasTheRun() || !scanner_->readHeaders()))
            return false;
        restoreHeader(context_.project, run_.head_.project);
        return true;
    }
    [[nodiscard]] bool readVolume(int volume) override {
        played_ = run_.takeVolume(volume, context_.project.volumes[size_t(volume)]);
        return played_ || (scanner_ && scanner_->readVolume(volume));
    }
    [[nodiscard]] bool isAtEnd() const override { return !scanner_; }
    [[nodiscard]] bool playsMeasuredVolumes() const override {
        return played_ && run_.purpose_ != PlayPurpose::Replay;
    }

private:
    /// Another series may lie in the folder by now.
    [[nodiscard]] bool scannerHasTheRun() const {
        const std::span<const int16_t> found = context_.project.firstVolume.span();
        std::vector<int16_t> recorded(found.size());
        if (copySamples(run_.firstVolume_, recorded) && std::ranges::equal(found, recorded))
            return true;
        showWarning(QStringLiteral("ERROR: The first file in folder \"%1\" is not that of the run "
                                   "in the journal. The run can be recovered, but the program can "
                                   "not go on with it.")
                        .arg(context_.state.watchFolder));
        return false;
    }

    JournalRun& run_;
    IntakeContext context_;
    std::unique_ptr<VolumeReader> scanner_; ///< null unless the run goes on
    bool played_ = false;                   ///< the volume that was read last was recorded
};

JournalRun::JournalRun(PlayOptions options, PlayPurpose purpose, RunListeners& listeners)
    : options_(std::move(options)), purpose_(purpose), listeners_(listeners),
      cursor_(options_.path) {
    listeners_.add(*this, ListenerPlace::Player);
}

void JournalRun::setContinuation(ReaderMaker makeReader, RunJournal& journal) {
    makeScannerReader_ = std::move(makeReader);
    journal_ = &journal;
}

bool JournalRun::open() {
    JournalRecord record;
    const auto take = [&](RecordKind kind) {
        return cursor_.next(record) && record.kind == uint32_t(kind);
    };
    const auto kept = [&] {
        return std::vector<uint8_t>(record.payload.begin(), record.payload.end());
    };
    if (!take(RecordKind::Head) || !decodeHead(record.payload, head_) ||
        !take(RecordKind::FirstVolume)) {
        showWarning("ERROR: " + noJournalText(options_.path));
        return false;
    }
    firstVolume_ = kept();
    bytesToKeep_ = cursor_.goodBytes();
    collectRecords();
    return true;
}

bool JournalRun::unpack(const InputFile& input, QString& path) {
    if (input.path.isEmpty())
        return true;
    path = unpacked_.filePath(paths::fileName(input.path));
    if (unpacked_.isValid() && writeFileAtomically(path, input.content))
        return true;
    showWarning(QStringLiteral("ERROR: The files of the journal can not be unpacked in folder "
                               "\"%1\". Is the disk full?")
                    .arg(unpacked_.path()));
    return false;
}

bool JournalRun::readSettings(RunSettings& settings, const std::function<void()>& stopTimer) {
    if (!ownSettings()) {
        settings.settingsFilePath = options_.settingsFile;
        if (!readSettingsForPlaying(settings, stopTimer))
            return false;
        // The recorded volumes are those that are analysed.
        const int analysed = settings.nrOfAnalysedVolumes();
        settings.NrOfVolumesToSkip = head_.project.NrOfSkippedVolumes;
        settings.NrOfVolumes = analysed + settings.NrOfVolumesToSkip;
    } else {
        settings.settingsFilePath = head_.settings.path;
        if (!readSettingsText(settings, QString::fromUtf8(head_.settings.content),
                              SettingsUse::Recorded, stopTimer))
            return false;
        QString* protocols[] = {&settings.TDatFile, &settings.RealTimeProtocol,
                                &settings.StimulationProtocol};
        for (QString* protocol : protocols)
            if (isProtocolPathSet(*protocol) && !unpack(head_.protocol, *protocol))
                return false;
        if (!unpack(head_.contrasts, settings.ContrastFile))
            return false;
    }
    // A line of a protocol that has not come by now will not come.
    if (purpose_ != PlayPurpose::GoOn)
        settings.timeOutMilliseconds = 0;
    if (purpose_ == PlayPurpose::GoOn && !head_.watchFolder.isEmpty()) {
        if (settings.documentFirstFileName.startsWith(settings.WatchFolder))
            settings.documentFirstFileName =
                head_.watchFolder + settings.documentFirstFileName.mid(settings.WatchFolder.size());
        settings.WatchFolder = head_.watchFolder;
    }
    return prepareForPlaying(settings, options_,
                             purpose_ == PlayPurpose::GoOn ? OutsideFeedback::Stays
                                                           : OutsideFeedback::IntoResults);
}

std::unique_ptr<VolumeReader> JournalRun::makeReader(const IntakeContext& context) {
    std::unique_ptr<VolumeReader> scanner;
    if (purpose_ == PlayPurpose::GoOn) {
        scanner = makeScannerReader_(context);
        if (!scanner)
            return nullptr;
    }
    return std::make_unique<JournalReader>(*this, context, std::move(scanner));
}

bool JournalRun::loadMotionTarget(const RunSettings& settings, const FMRProject& project,
                                  MotionCorrection& motion) {
    if (motionTarget_.empty() || !ownSettings())
        return RunSource::loadMotionTarget(settings, project, motion);
    return motion.motionTarget.allocate(project.volumeSamples()) &&
           copySamples(motionTarget_, motion.motionTarget.span());
}

void JournalRun::runPrepared(QtCortivoDoc& document) {
    document_ = &document;
    GrowingTextFile* lines = ownSettings() ? arrivingLines(document) : nullptr;
    if (lines)
        lines->close(); // they come from the journal
}

// Reads up to the next volume.
void JournalRun::collectRecords() {
    nextVolume_.clear();
    JournalRecord record;
    ListenerRecord made;
    while (nextVolume_.empty() && cursor_.next(record)) {
        const auto kind = RecordKind(record.kind);
        if (kind == RecordKind::MeasuredVolume) {
            nextVolume_.assign(record.payload.begin(), record.payload.end());
        } else if (kind == RecordKind::MotionTarget) {
            motionTarget_.assign(record.payload.begin(), record.payload.end());
            bytesToKeep_ = cursor_.goodBytes();
        } else if (kind == RecordKind::Listener && decodeListenerRecord(record.payload, made)) {
            records_.push_back(made);
        }
    }
}

bool JournalRun::takeVolume(int volume, std::span<int16_t> samples) {
    VolumeArrival arrival;
    std::span<const uint8_t> bytes;
    const bool isThere = !goesOn_ && !nextVolume_.empty() &&
                         decodeVolume(nextVolume_, arrival, bytes) && arrival.volume == volume &&
                         copySamples(bytes, samples);
    // First, where the journal has no volume, or one that is none: what is played from here on is
    // recorded again.
    if (!isThere && !goesOn_) {
        wrongVolume_ = !nextVolume_.empty();
        nextVolume_.clear();
        goOnRecording(volume - 1);
        playProtocol();
    }
    playUpTo(RecordMoment::Waiting);
    if (!isThere)
        return false;
    latestTaken_ = volume;
    bytesToKeep_ = cursor_.goodBytes();
    collectRecords();
    if (nextVolume_.empty())
        goOnRecording(volume);
    playProtocol();
    return true;
}

// From here on everything is written again that follows the latest volume in the journal: it is
// played, and what is played is recorded.
void JournalRun::goOnRecording(int latestVolume) {
    goesOn_ = purpose_ == PlayPurpose::GoOn;
    if (!goesOn_)
        return;
    const QString loss =
        lossText(options_.path, readSoFar(), latestVolume + 1, head_.project.size());
    if (loss.isEmpty())
        return journal_->goOn(options_.path, bytesToKeep_, latestVolume);
    journal_->goOnInCopy(options_.path, bytesToKeep_, latestVolume);
    showModelessWarning(loss);
}

JournalScanResult JournalRun::readSoFar() const {
    JournalScanResult result = cursor_.result();
    if (wrongVolume_) {
        result.end = JournalEnd::Damaged;
        result.goodBytes = bytesToKeep_;
    }
    return result;
}

void JournalRun::playUpTo(RecordMoment moment) {
    std::vector<ListenerRecord> due;
    std::erase_if(records_, [&](const ListenerRecord& record) {
        const bool isDue = notAfter(record.moment, moment);
        if (isDue)
            due.push_back(record);
        return isDue;
    });
    if (purpose_ == PlayPurpose::Replay)
        return;
    for (const ListenerRecord& record : due) {
        listeners_.play(record.record);
        if (goesOn_)
            listeners_.record(record.record);
    }
}

bool JournalRun::atStep(VolumeStep step, const VolumeAtHand&) {
    if (step == VolumeStep::LoadRegions)
        playUpTo(RecordMoment::BeforeRegions);
    else if (step == VolumeStep::LetterDecoder)
        playUpTo(RecordMoment::BeforeModel);
    return true;
}

void JournalRun::endOfVolume(const VolumeAtHand& hand) {
    latestPlayed_ = hand.volume;
    playUpTo(RecordMoment::AfterModel);
}

void JournalRun::loopEnded(QtCortivoDoc&) {
    playUpTo(RecordMoment::Waiting);
}
