// Who takes part in a run beside the loop itself: regions, plots, feedback, plug-ins, dialogs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <functional>
#include <vector>

class QtCortivoDoc;
class RunListeners;

/// Who comes first where several listen to the same thing. This is the one list of them;
/// the loop and the window name none.
enum class ListenerPlace {
    Journal, ///< takes the samples before anybody works on them
    Views,
    Regions,
    Plots,
    Logs,
    PlugIn, ///< hears of the end of a run before those that work on it
    Classification,
    Feedback,
    Decoder,
    Dialogs,
    Player, ///< of a recorded run: plays what the others have recorded
};

/// Steps of a volume in the order in which it passes them. Those up to the letter decoder rest on
/// the model of the volume before.
enum class VolumeStep {
    LoadRegions,
    RegionTimeCourses,
    Plots,
    Logs,
    Classification,
    LetterDecoder,
    AfterModel,
    SelectVoxels
};

/// What a hook works on, valid during the call.
struct VolumeAtHand {
    QtCortivoDoc& document;
    int volume; ///< index, from 0
    /// It was measured before, in a run that is recovered or goes on: what it gave to the subject
    /// and to other programs, it has given. A replay gives it again.
    bool played = false;
};

/// What a listener wants to find again when the run is recovered or gone on with: a change by the
/// operator, a line that arrived. `name` says whose it is; the content is its own.
struct RunRecord {
    QByteArray name;
    QByteArray content;
};

/// Overrides the hooks that it needs. It leaves its list when it is destroyed, which may happen in
/// any hook, its own included.
class RunListener {
public:
    RunListener() = default;
    virtual ~RunListener();
    RunListener(const RunListener&) = delete;
    RunListener& operator=(const RunListener&) = delete;

    /// The documents are about to be replaced: let go of them.
    virtual void documentsLeaving() {}
    /// New documents exist, still empty.
    virtual void documentsArrived(QtCortivoDoc& functional) { static_cast<void>(functional); }
    /// The run is prepared, or has been reloaded: its sizes, names and contrasts are known.
    virtual void runPrepared(QtCortivoDoc& functional) { static_cast<void>(functional); }
    /// Post-processing has changed the samples in memory, or given them back, and with them perhaps
    /// their motion. Its phase is not over yet.
    virtual void samplesChanged() {}
    /// The operator turned to another settings file: what belongs to the run in memory closes.
    virtual void settingsFileChanged() {}
    /// Called after settingsFileChanged() where the run in memory is one that was played beside the
    /// current settings file: it stays on the screen, with what chooses how it is shown.
    virtual void playedRunStays(QtCortivoDoc& functional) { static_cast<void>(functional); }

    /// Regions were added to the document, or removed from it, or their whole curves have changed;
    /// the views take it up.
    virtual void regionsChanged(QtCortivoDoc& functional) { static_cast<void>(functional); }

    /// Regions came from a file, with the maxima of the feedback display if it holds them; called
    /// before regionsChanged().
    virtual void regionsLoaded(QtCortivoDoc& functional) { static_cast<void>(functional); }

    /// The operator has changed the choices for the feedback to the subject, opened its display, or
    /// loaded regions, which bring maxima.
    virtual void feedbackChanged() {}

    /// The classifier of the run was switched on or off.
    virtual void classifierChanged() {}

    /// Maps of a plug-in were registered or taken away, their names or what is shown of them has
    /// changed, or they take the place of the contrasts, or leave it to these.
    virtual void mapListChanged() {}
    /// The threshold of a plug-in's maps holds now. `shown` is what the number field of the lower
    /// threshold shows: the upper one where that was raised with it.
    virtual void pluginThresholdApplied(float shown) { static_cast<void>(shown); }

    /// The samples of the volume are in memory, as they were measured. False ends the run, after
    /// the listener has said why; so it does for the steps.
    [[nodiscard]] virtual bool beforeVolume(const VolumeAtHand& hand) {
        static_cast<void>(hand);
        return true;
    }
    [[nodiscard]] virtual bool atStep(VolumeStep step, const VolumeAtHand& hand) {
        static_cast<void>(step), static_cast<void>(hand);
        return true;
    }
    /// Computes and draws what the subject sees, between classification and letter decoder. True
    /// when something was drawn: the time is then reported as feedbackTime.
    virtual bool drawSubjectDisplay(const VolumeAtHand& hand) {
        static_cast<void>(hand);
        return false;
    }
    /// Maps and views are up to date.
    virtual void endOfVolume(const VolumeAtHand& hand) { static_cast<void>(hand); }
    /// The last volume is done, whichever way the loop ended; nothing is saved yet.
    virtual void loopEnded(QtCortivoDoc& document) { static_cast<void>(document); }

    /// Somebody wants this kept; see RunListeners::record().
    virtual void recordMade(const RunRecord& record) { static_cast<void>(record); }
    /// The run is recovered or gone on with, and has come to the moment at which this record was
    /// made. In a replay the operator decides anew: no records come.
    virtual void recordPlayed(const RunRecord& record) { static_cast<void>(record); }

protected:
    /// Leaves the list before it is destroyed: a dialog that is hidden and deleted later.
    void stopListening();

private:
    friend class RunListeners;
    RunListeners* list_ = nullptr;
};

/// Hears, before each listener of a hook, which place it has: who takes how long.
using PlaceCalled = std::function<void(ListenerPlace place)>;

/// Calls its listeners in the order of their places, and of their arrival within a place. A hook
/// may add and remove listeners: one that joins is called from the next hook on, one that leaves is
/// not called any more.
class RunListeners {
public:
    RunListeners() = default;
    ~RunListeners();
    RunListeners(const RunListeners&) = delete;
    RunListeners& operator=(const RunListeners&) = delete;

    /// The listener, which is not owned, takes its place; one that had another leaves that.
    void add(RunListener& listener, ListenerPlace place);
    void remove(RunListener& listener);

    void documentsLeaving();
    void documentsArrived(QtCortivoDoc& functional);
    void runPrepared(QtCortivoDoc& functional);
    void samplesChanged();
    void settingsFileChanged();
    void playedRunStays(QtCortivoDoc& functional);
    void regionsChanged(QtCortivoDoc& functional);
    void regionsLoaded(QtCortivoDoc& functional);
    void feedbackChanged();
    void classifierChanged();
    void mapListChanged();
    void pluginThresholdApplied(float shown);
    /// These two stop at the first listener that ends the run, and give false then.
    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand, const PlaceCalled& called = {});
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand,
                              const PlaceCalled& called = {});
    /// True when anything was drawn.
    [[nodiscard]] bool drawSubjectDisplay(const VolumeAtHand& hand);
    void endOfVolume(const VolumeAtHand& hand, const PlaceCalled& called = {});
    void loopEnded(QtCortivoDoc& document);
    /// Keeps something of the run that is being recorded: the journal, if there is one, takes it,
    /// from runPrepared() on. What was changed before that is recorded there.
    void record(const RunRecord& record);
    void play(const RunRecord& record);

private:
    struct Entry {
        RunListener* listener; ///< null once it has left during a call
        ListenerPlace place;
    };
    using Call = std::function<bool(RunListener&)>;

    /// Calls each of them until one gives false.
    bool callEach(const Call& call, const PlaceCalled& called = {});
    void insert(const Entry& entry);
    void settle();

    std::vector<Entry> entries_;
    std::vector<Entry> joining_; ///< during a call
    int callDepth_ = 0;          ///< hooks process events, in which further hooks may be called
};
