// The journal of the run that is being recorded: whatever happens to the program, what the scanner
// has delivered is on disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "run/journal/journal_writer.h"
#include "run/loop/run_parts.h"
#include "run/replay/journal_list.h"
#include "run/replay/journal_records.h"
#include "run/replay/scanner_run.h"

#include <functional>
#include <memory>

inline constexpr char journalExtension[] = ".vcj";

/// What becomes of the journal of a run that has ended.
enum class JournalEnding {
    Removed,    ///< the results are on disk
    Kept,       ///< likewise, but it may be played again
    Unfinished, ///< it holds what the results lack
};

/// Writes the first volume of the run when it begins, each volume as it was read, before any
/// correction, and what listeners record. The loop never waits for the disk: a thread writes what
/// stands in a queue of bounded size. When that fails, the operator is told once, and the run goes
/// on without a journal.
class RunJournal : public RunListener {
public:
    RunJournal(RunListeners& listeners, const EventPump& pump) : clock_(pump) {
        listeners.add(*this, ListenerPlace::Journal);
    }

    /// A journal goes into the target folder of its run, or else into `fallbackFolder`; while it is
    /// not finished it stands in the list. Without these two: no fallback, no list.
    void setPlaces(const QString& fallbackFolder, const JournalList& list);
    [[nodiscard]] const JournalList& list() const { return list_; }

    /// Creates the file of a journal; a test puts a slow disk here.
    std::function<std::unique_ptr<JournalOutput>(const QString& path)> createOutput =
        createJournalFile;

    /// Begins the journal of a run that is prepared and not recorded yet.
    void begin(const RunParts& run, const RunInputs& inputs);
    /// Goes on writing into a journal whose run goes on, after its first `wholeBytes` bytes.
    void goOn(const QString& path, qint64 wholeBytes, int latestVolume);
    /// The same in a copy, "...-goes-on.vcj" or one with a number: a damaged journal stays as it
    /// is.
    void goOnInCopy(const QString& path, qint64 wholeBytes, int latestVolume);
    /// The run is over, with its results on disk or not. Does nothing when there is no journal.
    void end(JournalEnding ending);
    /// The same for a journal that was played: `wholeBytes` of it could be read.
    void endPlayed(const QString& path, qint64 wholeBytes, JournalEnding ending);

    /// Waits for the disk; true when all that arrived is in the file, and the file in its folder.
    [[nodiscard]] bool holdsRun();
    /// Of the run that is recorded; empty without a journal, and when it has ended.
    [[nodiscard]] const QString& path() const { return path_; }

    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void endOfVolume(const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;
    void recordMade(const RunRecord& record) override;

private:
    void createFile(const RunParts& run, const RunInputs& inputs);
    /// Waits for the disk; false when it doesn't take it.
    [[nodiscard]] bool writeBeginning(const RunParts& run, const RunInputs& inputs);
    void continueFile(const QString& path, qint64 wholeBytes, int latestVolume);
    void tellOfNoContinuation(const QString& path);
    void start(std::unique_ptr<JournalOutput> output, bool isNew);
    void add(RecordKind kind, std::span<const uint8_t> content,
             std::span<const uint8_t> samples = {});
    void addSamples(RecordKind kind, std::span<const int16_t> samples);
    void tellOfFault();

    StopWatch clock_; ///< since the first volume
    QString fallbackFolder_;
    JournalList list_;
    QString path_;
    std::unique_ptr<JournalWriter> writer_;
    bool faultTold_ = false;
    int volume_ = -1; ///< the latest in the journal
    RecordMoment moment_ = RecordMoment::Waiting;
    std::vector<int16_t> swapped_;
};
