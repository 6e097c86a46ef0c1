// A run that is played from its journal: recovered after a crash, gone on with, or replayed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/journal_scan.h"
#include "run/loop/run_listeners.h"
#include "run/replay/journal_records.h"
#include "run/replay/played_run.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <vector>

class RunJournal;

/// What is played beside the volumes and the lines of the protocol.
enum class PlayPurpose {
    Replay,  ///< nothing: the operator sits before the run as if it were measured now
    Recover, ///< what was recorded, so that the results are those of the run
    GoOn,    ///< likewise, and after the last recorded volume the scanner's next one is read
};

/// Source and listener of one such run. Each record is played at the moment of its volume at which
/// it was made, and a protocol's lines come with the volume that waited for them; so every step of
/// the loop finds what it found when the run was measured. When the last volume has come, the lines
/// that it may still need are read from the protocol's own file, if that is there.
class JournalRun : public RunSource, public RunListener {
public:
    /// Makes the reader of the scanner's files, for a run that goes on.
    using ReaderMaker = std::function<std::unique_ptr<VolumeReader>(const IntakeContext&)>;

    JournalRun(PlayOptions options, PlayPurpose purpose, RunListeners& listeners);

    /// Reads the head. False after a message.
    [[nodiscard]] bool open();
    [[nodiscard]] const RunHead& head() const { return head_; }
    /// Whether every volume that can be read has been played: the operator may stop a recovery, and
    /// the volume that is taken then does not count.
    [[nodiscard]] bool allPlayed() const {
        return nextVolume_.empty() && latestPlayed_ >= latestTaken_;
    }
    /// How far the journal could be read; a whole record that is not the volume it has to be is
    /// damage too.
    [[nodiscard]] JournalScanResult readSoFar() const;
    /// For GoOn: what reads on, and the journal that is continued.
    void setContinuation(ReaderMaker makeReader, RunJournal& journal);

    [[nodiscard]] bool readSettings(RunSettings& settings,
                                    const std::function<void()>& stopTimer) override;
    [[nodiscard]] std::unique_ptr<VolumeReader> makeReader(const IntakeContext& context) override;
    [[nodiscard]] bool isMeasured() const override { return purpose_ == PlayPurpose::GoOn; }
    [[nodiscard]] qint64 bytesOfJournal() const override { return QFileInfo(options_.path).size(); }
    [[nodiscard]] bool loadMotionTarget(const RunSettings& settings, const FMRProject& project,
                                        MotionCorrection& motion) override;

    void runPrepared(QtCortivoDoc& document) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void endOfVolume(const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

private:
    friend class JournalReader;

    [[nodiscard]] bool ownSettings() const { return options_.settingsFile.isEmpty(); }
    [[nodiscard]] bool unpack(const InputFile& input, QString& path);
    /// The next volume, if the journal has one, into `samples`.
    [[nodiscard]] bool takeVolume(int volume, std::span<int16_t> samples);
    void collectRecords();
    void playProtocol();
    [[nodiscard]] bool readProtocolOn();
    [[nodiscard]] QString protocolFile() const;
    void playUpTo(RecordMoment moment);
    void goOnRecording(int latestVolume);

    PlayOptions options_;
    PlayPurpose purpose_;
    RunListeners& listeners_;
    JournalCursor cursor_;
    RunHead head_;
    std::vector<uint8_t> firstVolume_;
    std::vector<uint8_t> motionTarget_;
    std::vector<uint8_t> nextVolume_; ///< payload of its record; empty at the end
    /// Of the journal, up to and including the latest volume; before that, what the run was
    /// prepared from. A run that goes on writes the rest again.
    qint64 bytesToKeep_ = 0;
    std::vector<ListenerRecord> records_; ///< of the latest volume, not yet played
    qsizetype linesPlayed_ = 0;
    int latestTaken_ = -1;     ///< volume of the journal, from 0
    int latestPlayed_ = -1;    ///< to its end
    bool wrongVolume_ = false; ///< a record is not the volume that comes next
    bool goesOn_ = false;      ///< the recorded part has been played, and the run goes on
    QTemporaryDir unpacked_;
    QtCortivoDoc* document_ = nullptr;
    ReaderMaker makeScannerReader_;
    RunJournal* journal_ = nullptr;
};
