// Runs whose disk is full or whose folder goes: what was measured is in the results or the journal.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/crash_trial.h"

#include <QScopeGuard>
#include <algorithm>
#include <csignal>
#include <sys/resource.h>

namespace {

/// While this lives, files can't grow beyond a size, as if the disk were full then.
class FileSizeLimit {
public:
    FileSizeLimit() {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FileSizeLimit() {
        lift();
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void set(qint64 bytes) {
        const rlimit limit{rlim_t(bytes), before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    void lift() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

/// 30 volumes of 24 x 24 x 6 samples, and how the run is saved when nothing happens.
class Fault : public testing::Test {
protected:
    Fault() : trial_(options()) {
        trial_.run(-1, 0);
        expected_ = trial_.takeResults();
        // Only what the saving writes.
        for (const QString& name : expected_.keys())
            if (name.endsWith(".txt") || name.endsWith(".log"))
                expected_.remove(name);
        EXPECT_EQ(expected_.size(), 7);
        CrashTrial::prepare(session_, folder_.path());
    }
    [[nodiscard]] SimulationOptions options() const {
        SimulationOptions options;
        options.folder = folder_.path();
        options.sizeX = options.sizeY = 24;
        options.nrOfSlices = 6;
        options.nrOfVolumes = 32;
        options.blockLength = 4;
        options.motion = HeadMotion::Drift;
        return options;
    }
    /// Runs it again; questions get this answer after `beforeAnswer`.
    void run(bool answer, std::function<void()> beforeAnswer) {
        trial_.messages.acceptAnything(answer);
        trial_.messages.onQuestion = [this, beforeAnswer = std::move(beforeAnswer)] {
            ++questions_;
            beforeAnswer();
        };
        questions_ = 0;
        session_.setRunButton(RunButtonState::Ready);
        session_.runButtonPressed();
    }
    void expectAllInResults() {
        const auto found = trial_.takeResults();
        for (const QString& name : expected_.keys())
            EXPECT_TRUE(found[name] == expected_[name]) << qPrintable(name);
    }
    /// Of the latest run and those before.
    [[nodiscard]] int messagesThatBegin(const QString& text) const {
        return int(std::ranges::count_if(
            trial_.messages.shown(), [&](const QString& shown) { return shown.startsWith(text); }));
    }

    QTemporaryDir folder_;
    CrashTrial trial_;
    QMap<QString, QByteArray> expected_;
    SimulatedPump pump_;
    ProbeDisplay display_;
    RunSession session_{pump_, display_};
    int questions_ = 0;
};

class FullDisk : public Fault {
protected:
    FileSizeLimit limit_;
};

} // namespace

// Each file of the results is in turn the smallest one that has no room.
TEST_F(FullDisk, AtAnyWriteOfTheSavingLosesNothing) {
    for (const QString& name : expected_.keys())
        for (const bool answer : {true, false}) {
            SCOPED_TRACE(testing::Message() << qPrintable(name) << ", answer " << answer);
            bool first = true;
            display_.whileSaving = [&] {
                if (!std::exchange(first, false))
                    return;
                EXPECT_TRUE(session_.journal.holdsRun());
                limit_.set(expected_[name].size() - 1);
            };
            run(answer, [&] { limit_.lift(); });
            EXPECT_EQ(session_.report.savedCompletely, answer);
            EXPECT_EQ(questions_, 1);
            const QStringList journals = trial_.journals();
            ASSERT_EQ(journals.size(), answer ? 0 : 1);
            if (!answer)
                trial_.play(journals.front(), PlayPurpose::Recover, 0);
            expectAllInResults();
        }
}

TEST_F(FullDisk, EndsTheJournalAndNotTheRun) {
    int told = 0;
    for (const qint64 bytes : {20'000, 100'000}) {
        display_.whenLogged = [&] {
            limit_.set(bytes);
            (void)session_.journal.holdsRun(); // the disk has had its time
        };
        display_.whileSaving = [&] { limit_.lift(); };
        run(false, [] {});
        EXPECT_EQ(messagesThatBegin("WARNING: The journal "), ++told);
        EXPECT_TRUE(session_.report.savedCompletely);
        expectAllInResults();
    }
}

// The part in the journal must not be offered, and replace the whole, later on.
TEST_F(FullDisk, ARunThatIsSavedAtLastLeavesNoPartOfIt) {
    display_.whenLogged = [&] {
        limit_.set(20'000);
        (void)session_.journal.holdsRun();
    };
    run(false, [] {});
    limit_.lift();
    EXPECT_TRUE(session_.report.onlyInMemory);
    EXPECT_EQ(trial_.journals().size(), 1);
    trial_.messages.acceptAnything(true);
    EXPECT_TRUE(session_.mayLeaveRun());
    EXPECT_TRUE(trial_.journals().isEmpty());
    expectAllInResults();
}

TEST_F(Fault, AFolderThatGoesIsMadeAgainOrAskedFor) {
    const QString results = trial_.path("results");
    const struct {
        const char* name;
        std::function<void()> happen;
        int questions;
        bool endsJournal;
    } faults[] = {
        {"removed", [&] { QDir(results).removeRecursively(); }, 0, true},
        {"renamed", [&] { QDir().rename(results, results + "-away"); }, 0, false},
        {"leads nowhere",
         [&] {
             QDir().rename(results, results + "-elsewhere");
             QFile::link(results + "-missing", results);
         },
         1, false},
        {"has become a file",
         [&] {
             QDir(results).removeRecursively();
             QFile file(results);
             EXPECT_TRUE(file.open(QIODevice::WriteOnly));
         },
         1, true},
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        const int toldBefore = messagesThatBegin("WARNING: The journal ");
        bool happened = false;
        display_.whenLogged = [&] {
            if (!session_.phase.runActive() || session_.report.currentVolume != 10)
                return;
            if (!std::exchange(happened, true))
                fault.happen();
            (void)session_.journal.holdsRun(); // forces out
        };
        run(true, [&] { EXPECT_TRUE(QFile::remove(results)); });
        EXPECT_TRUE(happened);
        EXPECT_EQ(questions_, fault.questions);
        EXPECT_EQ(messagesThatBegin("WARNING: The journal ") - toldBefore, fault.endsJournal);
        EXPECT_TRUE(session_.report.savedCompletely);
        // Without a log of their motion volumes are not corrected.
        if (fault.questions == 0)
            expectAllInResults();
        else
            EXPECT_EQ(trial_.takeResults()["Simulation-1.stc"].size(), 30 * 24 * 24 * 6 * 2);
    }
    // A journal goes with its folder and stays whole.
    for (const char* away : {"-away", "-elsewhere"}) {
        const QStringList left = QDir(results + away).entryList({"*.vcj"}, QDir::Files);
        ASSERT_EQ(left.size(), 1);
        trial_.play(results + away + '/' + left.front(), PlayPurpose::Recover, 0);
        expectAllInResults();
    }
}
