// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/crash_trial.h"

#include "run/journal/journal_scan.h"
#include "run/replay/journal_records.h"

namespace {

enum Moment { BeforeModel, AfterModel, EndOfVolume };

struct Change {
    int volume;
    Moment moment;
    void (*make)(RunSession&);
};

void toggle(RunSession& session, int contrast, ContrastState bit) {
    ASSERT_TRUE(toggleContrast(session.functionalDocument->contrasts, contrast, bit));
    session.contrastsChanged();
}

constexpr Change changes[] = {
    {2, EndOfVolume, [](RunSession& s) { s.changeThreshold(2.5f); }},
    {9, BeforeModel, [](RunSession& s) { toggle(s, 0, ContrastNegative); }},
    {13, BeforeModel, [](RunSession& s) { s.stepThreshold(true); }},
    {14, AfterModel, [](RunSession& s) { toggle(s, 1, ContrastPositive); }},
    {15, EndOfVolume, [](RunSession& s) { s.changeClusterSize(7); }},
    {17, EndOfVolume, [](RunSession& s) { s.changeColorMaxThreshold(11.0f); }},
    {19, BeforeModel,
     [](RunSession& s) {
         s.functionalDocument->contrasts.ContrastColors[0] = {1, 2, 3};
         s.contrastsChanged();
     }},
    {22, AfterModel, [](RunSession& s) { toggle(s, 1, ContrastPositive); }},
    {23, EndOfVolume, [](RunSession& s) { EXPECT_TRUE(s.changeConjunction(true)); }},
    {26, BeforeModel, [](RunSession& s) { s.changeThreshold(3.25f); }},
};

} // namespace

void TrialOperator::change(int volume, int moment) {
    for (int i = firstChange; i < std::min(endOfChanges, int(std::size(changes))); ++i)
        if (changes[i].volume == volume && changes[i].moment == moment)
            changes[i].make(session_);
}

bool TrialOperator::atStep(VolumeStep step, const VolumeAtHand& hand) {
    if (step == VolumeStep::Plots)
        change(hand.volume, BeforeModel);
    if (step == VolumeStep::SelectVoxels)
        change(hand.volume, AfterModel);
    return true;
}

void TrialOperator::endOfVolume(const VolumeAtHand& hand) {
    change(hand.volume, EndOfVolume);
}

CrashTrial::CrashTrial(const SimulationOptions& options) : options_(options) {
    const SimulatedScan scan(options);
    EXPECT_TRUE(scan.writeSettings() && scan.writeProtocol() && scan.writeProtocolHeader());
    for (int volume = 0; volume < options.nrOfVolumes; ++volume)
        EXPECT_TRUE(scan.writeVolume(volume, scan.watchFolder()) && scan.appendProtocol(volume));
    messages.acceptAnything();
}

CrashTrial::~CrashTrial() {
    QDir().setCurrent(QDir::tempPath()); // a run works in its target folder
    if (testing::Test::HasFailure())
        for (const QString& text : messages.shown())
            std::printf("message: %s\n", qPrintable(text));
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
    TrialOperator trialOperator(session);
    trialOperator.endOfChanges = nrOfChanges;
    // The volume that is read next does not count, so no further change may be made.
    display.whenLogged = [&] {
        if (session.phase.runActive() && session.report.currentVolume == stopAt - 1)
            session.requestStop();
    };
    prepare(session, options_.folder);
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
}

QStringList CrashTrial::journals() const {
    QStringList paths;
    for (const QString& name : QDir(path("results")).entryList({"*.vcj"}, QDir::Files))
        paths << path("results/" + name);
    return paths;
}

void CrashTrial::play(const QString& journal, PlayPurpose purpose, int firstChange) {
    SimulatedPump pump;
    pump.setEventCost(1);
    ProbeDisplay display;
    RunSession session(pump, display);
    TrialOperator trialOperator(session);
    trialOperator.firstChange =
        purpose == PlayPurpose::GoOn ? firstChange : std::numeric_limits<int>::max();
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, purpose));
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_TRUE(journals().isEmpty());
}

QMap<QString, QByteArray> CrashTrial::takeResults() {
    QMap<QString, QByteArray> results;
    QDir folder(path("results"));
    for (const QString& name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        results[name] = file.readAll();
    }
    QDir().setCurrent(QDir::tempPath());
    EXPECT_TRUE(folder.removeRecursively());
    return results;
}

JournalCount countJournal(const QString& path) {
    JournalCount count;
    (void)scanJournal(path, [&](const JournalRecord& record) {
        ListenerRecord made;
        count.volumes += RecordKind(record.kind) == RecordKind::MeasuredVolume;
        // What stands before the first volume is the state at the start.
        count.changes += count.volumes > 0 && RecordKind(record.kind) == RecordKind::Listener &&
                         decodeListenerRecord(record.payload, made) && made.record.name == "maps";
        return true;
    });
    return count;
}
