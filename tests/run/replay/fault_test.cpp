// Runs whose disk is full or whose folder goes: what was measured is in the results or the journal.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/crash_trial.h"
#include <csignal>
#include <sys/resource.h>

namespace {

/// While this lives, files can't grow beyond a size, as if the disk were full then.
class FileSizeLimit {
public:
    FileSizeLimit() { EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0); }
    ~FileSizeLimit() {
        lift();
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void set(rlim_t bytes) {
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    void lift() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

/// A run, and how it is saved when nothing happens.
class Fault : public testing::Test {
protected:
    Fault() : trial_({24, 6, HeadMotion::Drift, ProtocolKind::Prt}) {
        trial_.followsRegions = false;
        trial_.run(-1, 0);
        expected_ = trial_.takeResults();
        // Only what the saving writes: the model is fitted after it, and again at a reload.
        for (const QString& name : expected_.keys())
            if (name.endsWith(".txt") || name.endsWith(".log") || name.endsWith(".glm") ||
                name.endsWith("_run-1.rtc"))
                expected_.remove(name);
        EXPECT_EQ(expected_.size(), 10);
        CrashTrial::prepare(session_, trial_.path(""));
    }
    /// Runs it again; questions get this answer after `beforeAnswer`. The number of questions, and
    /// of warnings about the journal.
    std::pair<int, int> run(bool answer, const std::function<void()>& beforeAnswer) {
        int questions = 0;
        trial_.messages.acceptAnything(answer);
        trial_.messages.onQuestion = [&] {
            ++questions;
            beforeAnswer();
        };
        const auto warnings = [&] {
            return int(trial_.messages.shown().filter("WARNING: The journal ").size());
        };
        const int before = warnings();
        session_.setRunButton(RunButtonState::Ready);
        session_.runButtonPressed();
        trial_.messages.onQuestion = {};
        return {questions, warnings() - before};
    }
    void expectAllInResults() {
        const auto found = trial_.takeResults();
        for (const QString& name : expected_.keys())
            EXPECT_TRUE(found[name] == expected_[name]) << qPrintable(name);
    }

    CrashTrial trial_;
    CrashTrial::Results expected_;
    SimulatedPump pump_;
    ProbeDisplay display_;
    RunSession session_{pump_, display_};
};

class FullDisk : public Fault {
protected:
    void limitFromFirstVolumeOn(rlim_t bytes) {
        display_.whenLogged = [=, this] {
            limit_.set(bytes);
            (void)session_.journal.holdsRun(); // the disk has had its time
        };
    }
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
            EXPECT_EQ(run(answer, [&] { limit_.lift(); }).first, 1);
            EXPECT_EQ(session_.report.savedCompletely, answer);
            const QStringList journals = trial_.journals();
            ASSERT_EQ(journals.size(), answer ? 0 : 1);
            if (!answer)
                trial_.play(journals.front(), PlayPurpose::Recover);
            expectAllInResults();
        }
}

TEST_F(FullDisk, EndsTheJournalAndNotTheRun) {
    for (const rlim_t bytes : {20'000, 100'000}) {
        limitFromFirstVolumeOn(bytes);
        display_.whileSaving = [&] { limit_.lift(); };
        EXPECT_EQ(run(false, [] {}).second, 1);
        EXPECT_TRUE(session_.report.savedCompletely);
        expectAllInResults();
    }
}

// The part in the journal must not be offered, and replace the whole, later on.
TEST_F(FullDisk, ARunThatIsSavedAtLastLeavesNoPartOfIt) {
    expected_.remove("Simulation-1.mps"); // by then the maps are those of the complete run
    for (const bool recovers : {false, true}) {
        limitFromFirstVolumeOn(20'000);
        run(false, [] {});
        limit_.lift();
        display_.whenLogged = {};
        EXPECT_TRUE(session_.report.onlyInMemory);
        ASSERT_EQ(trial_.journals().size(), 1);
        trial_.messages.acceptAnything(true);
        if (recovers)
            EXPECT_FALSE(session_.playJournal({trial_.journals().front(), {}, {}, false},
                                              PlayPurpose::Recover));
        else
            EXPECT_TRUE(session_.mayLeaveRun());
        EXPECT_TRUE(trial_.journals().isEmpty());
        expectAllInResults();
    }
}

TEST_F(Fault, AFolderThatGoesIsMadeAgainOrAskedFor) {
    const QString results = trial_.path("results");
    const auto remove = [&] { QDir(results).removeRecursively(); };
    const auto rename = [&](const char* ending) { QDir().rename(results, results + ending); };
    const struct {
        const char* name;
        std::function<void()> happen;
        int questions;
        int warnings; ///< that the journal ends
    } faults[] = {{"removed", remove, 0, 1},
                  {"renamed", [&] { rename("-away"); }, 0, 0},
                  {"leads nowhere",
                   [&] {
                       rename("-elsewhere");
                       QFile::link(results + "-missing", results);
                   },
                   1, 0},
                  {"has become a file",
                   [&] {
                       remove();
                       EXPECT_TRUE(QFile(results).open(QIODevice::WriteOnly));
                   },
                   1, 1}};
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        bool happened = false;
        display_.whenLogged = [&] {
            if (!session_.phase.runActive() || session_.report.currentVolume != 10)
                return;
            if (!std::exchange(happened, true))
                fault.happen();
            (void)session_.journal.holdsRun(); // forces out
        };
        EXPECT_EQ(run(true, [&] { EXPECT_TRUE(QFile::remove(results)); }),
                  std::pair(fault.questions, fault.warnings));
        EXPECT_TRUE(happened);
        EXPECT_TRUE(session_.report.savedCompletely);
        // Without a log of their motion volumes are not corrected.
        if (fault.questions == 0)
            expectAllInResults();
        else
            EXPECT_EQ(trial_.takeResults()["Simulation-1.stc"].size(), 30 * 24 * 24 * 6 * 2);
    }
    // A journal goes with its folder and stays whole.
    for (const char* away : {"results-away", "results-elsewhere"}) {
        ASSERT_EQ(trial_.journals(away).size(), 1);
        trial_.play(trial_.journals(away).front(), PlayPurpose::Recover);
        expectAllInResults();
    }
}
