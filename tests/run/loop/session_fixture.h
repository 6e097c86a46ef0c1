// A whole session in a temporary folder, on simulated time, with a scripted source of volumes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"
#include "run/session/run_session.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/simulated_pump.h"

#include <QDir>
#include <QTemporaryDir>
#include <map>

/// Collects what a run shows.
class ProbeDisplay : public RunDisplay {
public:
    QStringList calls;
    QStringList logTexts;
    std::vector<RunButtonState> buttonStates;
    std::vector<int> progress;
    std::function<void()> whileSaving;
    std::function<void()> whileModelling;
    QString modelText;           ///< of the latest fit of a model
    bool modelCancelled = false; ///< the operator stops it
    std::function<void()> whenLogged;
    std::function<void()> whenShown;
    std::function<void()> whenStarting;
    std::function<void()> whenEnded;

    void workStarting() override {
        calls << "starting";
        if (whenStarting)
            whenStarting();
    }
    void workEnded() override {
        calls << "ended";
        if (whenEnded)
            whenEnded();
    }
    void setRunButtonState(RunButtonState state) override { buttonStates.push_back(state); }
    void showLogText(const QString& html) override {
        logTexts << html;
        if (whenLogged)
            whenLogged();
    }
    void refreshViewButtons() override {}
    void updateViews() override {
        calls << "views";
        if (whenShown)
            whenShown();
    }
    std::unique_ptr<ProgressReporter> openSavingProgress() override;
    std::unique_ptr<ProgressReporter> openModelProgress(const QString& text) override;
    std::unique_ptr<ProgressReporter> openAnalysisProgress(const QString& text) override {
        return openModelProgress(text);
    }
};

/// Listens to a run and does what a test says.
class ProbeListener : public RunListener {
public:
    ProbeListener(RunListeners& listeners, ListenerPlace place) { listeners.add(*this, place); }

    QStringList hooks; ///< of the run, and of the volumes that `watched` names
    std::function<bool(int volume)> watched = [](int) { return false; };
    std::function<bool(VolumeStep, const VolumeAtHand&)> onStep;
    std::function<bool(int volume)> onBeforeVolume;
    std::function<bool(int volume)> onSubjectDisplay;
    std::function<void(int volume)> onEndOfVolume = [](int) {};

    void documentsLeaving() override { hooks << "leaving"; }
    void documentsArrived(QtCortivoDoc&) override { hooks << "arrived"; }
    void runPrepared(QtCortivoDoc&) override { hooks << "prepared"; }
    void settingsFileChanged() override { hooks << "changed"; }
    void playedRunStays(QtCortivoDoc&) override { hooks << "stays"; }
    bool beforeVolume(const VolumeAtHand& hand) override {
        note("before", hand);
        return !onBeforeVolume || onBeforeVolume(hand.volume);
    }
    bool atStep(VolumeStep step, const VolumeAtHand& hand) override {
        note(QString::number(int(step)), hand);
        return !onStep || onStep(step, hand);
    }
    bool drawSubjectDisplay(const VolumeAtHand& hand) override {
        note("subject", hand);
        return onSubjectDisplay && onSubjectDisplay(hand.volume);
    }
    void endOfVolume(const VolumeAtHand& hand) override {
        note("end", hand);
        onEndOfVolume(hand.volume);
    }
    void loopEnded(QtCortivoDoc&) override { hooks << "over"; }

private:
    void note(const QString& hook, const VolumeAtHand& hand) {
        if (watched(hand.volume))
            hooks << hook;
    }
};

/// What a scripted source does at each volume.
struct Script {
    int lastVolume = 1000000; ///< the one after it never comes
    bool firstVolumeComes = true;
    int firstSample = 0;               ///< added to all samples of the first volume
    qint64 millisecondsPerVolume = 0;  ///< simulated time that each volume takes
    std::function<void(int)> atVolume; ///< called when the volume has been read
};

/// The sample of a voxel at a saved volume, as it was measured.
using MeasuredSample = std::function<int(size_t voxel, int volume)>;

/// Number of volumes that the saved data hold, after each sample was compared with its source at
/// the place that the layout gives it: slice by slice, volumes within a slice. -1 when one differs.
[[nodiscard]] int savedVolumes(const QByteArray& data, size_t sliceSamples, size_t nrOfSlices,
                               const MeasuredSample& measured);

/// The phases of a session, with names for traces.
inline const std::map<Phase, const char*> phaseNames = {
    {Phase::Idle, "idle"},           {Phase::Preparing, "preparing"},
    {Phase::Recording, "recording"}, {Phase::Saving, "saving"},
    {Phase::Reloading, "reloading"}, {Phase::PostProcessing, "post"},
    {Phase::Analysing, "analysing"}};

/// Does something at each report of progress, in percent.
class Reporter : public ProgressReporter {
public:
    using AtReport = std::function<void(int percent)>;
    explicit Reporter(AtReport atReport = [](int) {}) : atReport_(std::move(atReport)) {}
    void setProgress(int percent) override { atReport_(percent); }
    [[nodiscard]] bool cancelled() const override { return isCancelled && *isCancelled; }
    const bool* isCancelled = nullptr;

private:
    AtReport atReport_;
};

/// Cuts a journal behind its first volumes, as a crash does.
void cutJournal(const QString& path, int volumes);

/// One sample of a scripted volume: above the mask threshold, different at each voxel and volume.
[[nodiscard]] int16_t scriptedSample(size_t voxel, int volume);

class SessionFixture : public testing::Test {
protected:
    SessionFixture();
    ~SessionFixture() override { QDir::setCurrent(QDir::tempPath()); } // a run works in its folder

    /// Writes a settings file of 8 x 8 x 4 voxels and its protocol. `changes` replaces lines by
    /// key.
    void writeSession(int volumes, int skip, const QMap<QString, QString>& changes = {},
                      const QString& protocol = defaultProtocol());
    [[nodiscard]] static QString defaultProtocol();
    /// Runs the session; the path of its journal, which is kept.
    [[nodiscard]] QString recordJournal();
    /// That its results hold; -1 when a sample is wrong.
    [[nodiscard]] int volumesIn(const QString& folder) const {
        return savedVolumes(content(folder + "/test.stc"), 8 * 8, 4, scriptedSample);
    }
    /// Calls `operation` once while the session, which has a run of more than 20 volumes in memory
    /// and on disk, is in the phase, and returns when it is idle.
    void inPhase(Phase phase, const std::function<void()>& operation);
    bool postprocess(ProgressReporter& progress);
    [[nodiscard]] QtCortivoDoc& document() const { return *session.functionalDocument; }
    /// The values of all maps, one map behind the other.
    [[nodiscard]] std::vector<float> mapValues() const {
        const std::span<const float> maps = document().maps.ContrastMaps.span();
        return {maps.begin(), maps.end()};
    }
    /// Runs the settings again, as after another press on a button that is ready.
    void runAgain() {
        session.setRunButton(RunButtonState::Ready);
        session.runButtonPressed();
    }
    [[nodiscard]] QString path(const QString& name) const { return folder_.filePath(name); }
    void put(const QString& name, const QByteArray& bytes,
             QIODevice::OpenMode mode = QIODevice::WriteOnly) {
        writeFile(path(name), bytes, mode);
    }
    [[nodiscard]] QByteArray content(const QString& name) const { return contentOf(path(name)); }
    [[nodiscard]] QString progressLog() const { return display.calls.join(' '); }

    QTemporaryDir folder_;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    SimulatedPump pump;
    ProbeDisplay display;
    RunSession session{pump, display};
    Script script;
};
