// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/crash_trial.h"

#include "run/journal/journal_scan.h"
#include "run/replay/journal_records.h"

namespace {

struct Change {
    int volume;
    std::optional<VolumeStep> step; ///< none: the end of the volume
    void (*make)(RunSession&);
};

void toggle(RunSession& session, int contrast, ContrastState bit) {
    ASSERT_TRUE(toggleContrast(session.functionalDocument->contrasts, contrast, bit));
    session.contrastsChanged();
}

void draw(RunSession& session, int slice) {
    EXPECT_TRUE(session.regions.selectRectangle({slice, 4, 12, 15, 5}));
}

constexpr auto beforeRegions = VolumeStep::LoadRegions; // as while an arriving protocol is awaited
constexpr auto beforeModel = VolumeStep::LetterDecoder;
constexpr auto afterModel = VolumeStep::SelectVoxels;
constexpr Change changes[] = {
    {2, {}, [](RunSession& s) { s.changeThreshold(2.5f); }},
    {3, {}, [](RunSession& s) { draw(s, 2); }},
    {9, beforeModel, [](RunSession& s) { toggle(s, 0, ContrastNegative); }},
    {13, beforeModel, [](RunSession& s) { s.stepThreshold(true); }},
    {14, afterModel, [](RunSession& s) { toggle(s, 1, ContrastPositive); }},
    {15, {}, [](RunSession& s) { s.changeClusterSize(7); }},
    {16, beforeRegions, [](RunSession& s) { draw(s, 1); }},
    {17, {}, [](RunSession& s) { s.changeColorMaxThreshold(11.0f); }},
    {19, beforeModel,
     [](RunSession& s) {
         s.functionalDocument->contrasts.ContrastColors[0] = {1, 2, 3};
         s.contrastsChanged();
     }},
    {22, afterModel, [](RunSession& s) { toggle(s, 1, ContrastPositive); }},
    {23, {}, [](RunSession& s) { EXPECT_TRUE(s.changeConjunction(true)); }},
    {24, afterModel, [](RunSession& s) { draw(s, 3); }},
    {26, beforeModel, [](RunSession& s) { s.changeThreshold(3.25f); }},
};

} // namespace

int numberFrom(const char* variable, int otherwise) {
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : otherwise;
}

void operate(ProbeListener& listener, RunSession& session, int first, int end) {
    const auto change = [=, &session](int volume, std::optional<VolumeStep> step) {
        for (int i = first; i < std::min(end, int(std::size(changes))); ++i)
            if (changes[i].volume == volume && changes[i].step == step)
                changes[i].make(session);
    };
    listener.onStep = [change](VolumeStep step, const VolumeAtHand& hand) {
        change(hand.volume, step);
        return true;
    };
    listener.onEndOfVolume = [change](int volume) { change(volume, {}); };
}

JournalCount countJournal(const QString& path) {
    JournalCount count;
    JournalCursor cursor(path);
    ListenerRecord made;
    for (JournalRecord record; cursor.next(record);) {
        count.volumes += RecordKind(record.kind) == RecordKind::MeasuredVolume;
        // What stands before the first volume is the state at the start.
        count.changes += count.volumes > 0 && RecordKind(record.kind) == RecordKind::Listener &&
                         decodeListenerRecord(record.payload, made) &&
                         (made.record.name == "maps" || made.record.name == "regions");
    }
    return count;
}

CrashTrial::CrashTrial(const TrialKind& kind) {
    SimulationOptions options;
    options.folder = folder_.path();
    options.sizeX = options.sizeY = kind.size;
    options.nrOfSlices = kind.slices;
    options.motion = kind.motion;
    options.protocol = kind.protocol;
    options.nrOfVolumes = 32;
    options.blockLength = 4;
    const SimulatedScan scan(options);
    EXPECT_TRUE(scan.writeSettings() && scan.writeProtocol() && scan.writeProtocolHeader());
    for (int volume = 0; volume < options.nrOfVolumes; ++volume)
        EXPECT_TRUE(scan.writeVolume(volume, scan.watchFolder()) && scan.appendProtocol(volume));
    messages.acceptAnything();
}

CrashTrial::~CrashTrial() {
    QDir::setCurrent(QDir::tempPath()); // a run works in its target folder
    if (testing::Test::HasFailure())
        std::printf("messages: %s\n", qPrintable(messages.shown().join('\n')));
}

// A recovered run knows this from its journal.
void CrashTrial::followRegions(RunSession& session) {
    for (const auto log : {&OperatorRequests::saveRTPs, &OperatorRequests::saveROITimeCourses,
                           &OperatorRequests::saveROIBetaTimeCourses})
        session.regions.setLog(log, true);
    session.requests.regions.BestVoxelSelection = true;
}

void CrashTrial::prepare(RunSession& session, const QString& folder) {
    session.settings.settingsFilePath = folder + "/Simulation-1.vco";
    session.settings.settingsFileDir = folder + "/";
    session.setRunButton(RunButtonState::Ready);
}

void CrashTrial::run(int stopAt, int nrOfChanges) {
    SimulatedPump pump;
    ProbeDisplay display;
    RunSession session(pump, display);
    session.keepsJournals = keepsJournals;
    ProbeListener listener(session.listeners, ListenerPlace::Dialogs);
    operate(listener, session, 0, nrOfChanges);
    // The volume that is read next does not count, so no further change may be made.
    display.whenLogged = [&] {
        if (session.phase.runActive() && session.report.currentVolume == stopAt - 1)
            session.requestStop();
    };
    prepare(session, folder_.path());
    if (followsRegions)
        followRegions(session);
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
}

QStringList CrashTrial::journals(const QString& folder) const {
    QStringList paths;
    for (const QFileInfo& file : QDir(path(folder)).entryInfoList({"*.vcj"}, QDir::Files))
        paths << file.filePath();
    return paths;
}

void CrashTrial::play(const QString& journal, PlayPurpose purpose, int firstChange) {
    SimulatedPump pump;
    pump.setEventCost(1);
    ProbeDisplay display;
    RunSession session(pump, display);
    ProbeListener listener(session.listeners, ListenerPlace::Dialogs);
    if (purpose == PlayPurpose::GoOn)
        operate(listener, session, firstChange);
    // A journal that ends before the first record of regions doesn't tell.
    if (purpose == PlayPurpose::GoOn && followsRegions)
        followRegions(session);
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, purpose));
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_TRUE(journals().isEmpty());
}

void CrashTrial::expectComesBack(const QString& journal, bool goesOn) {
    constexpr int analysedVolumes = 30;
    const auto [volumes, changes] = countJournal(journal);
    goesOn = goesOn || volumes == 0;
    SCOPED_TRACE(testing::Message() << "volumes " << volumes << ", changes " << changes);
    const Results left = results();
    play(journal, goesOn ? PlayPurpose::GoOn : PlayPurpose::Recover, changes);
    Results found = takeResults();
    run(goesOn || volumes == analysedVolumes ? -1 : volumes, goesOn ? 1000 : changes);
    Results expected = takeResults();
    // Value files of volumes that were measured before the crash are not given again.
    for (int volume = 1; volume <= volumes; ++volume) {
        const QString name = QString("Simulation-1-%1.rtp").arg(volume);
        if (left.contains(name))
            continue;
        EXPECT_FALSE(found.contains(name)) << qPrintable(name);
        expected.remove(name);
    }
    // Of the volume in flight the killed run may have left files that a run without it hasn't.
    for (const QString& name : left.keys())
        if (!expected.contains(name) && found.value(name) == left[name])
            found.remove(name);
    EXPECT_EQ(found.keys().join(' ').toStdString(), expected.keys().join(' ').toStdString());
    for (const QString& name : expected.keys())
        EXPECT_TRUE(found[name] == expected[name]) << qPrintable(name);
}

CrashTrial::Results CrashTrial::results() const {
    Results results;
    const QDir folder(path("results"));
    for (const QString& name : folder.entryList(QDir::Files))
        if (!name.endsWith("_timing.tsv")) // a volume that is played has other times
            results[name] = contentOf(folder.filePath(name));
    return results;
}

CrashTrial::Results CrashTrial::takeResults() {
    const Results found = results();
    QDir::setCurrent(QDir::tempPath());
    EXPECT_TRUE(QDir(path("results")).removeRecursively());
    return found;
}
