// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_watch.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

/// A folder "/s/" with these files.
struct Session {
    QStringList files;

    [[nodiscard]] bool has(const QString& path) const {
        return path.startsWith("/s/") && files.contains(path.mid(3));
    }
    [[nodiscard]] WatchOutcome look(const WatchState& state) const {
        return lookAtSession(
            state, [](const QString& folder) { return folder == "/s/"; },
            [this](const QString& path) { return has(path); });
    }
    [[nodiscard]] int count(const QString& name) const {
        return countRecordings("/s/", name, [this](const QString& path) { return has(path); });
    }
};

WatchState watching(const QString& name) {
    WatchState state;
    state.settingsDirectory = "/s/";
    state.settingsFileName = name;
    return state;
}

TEST(SessionWatch, NamesNeighbours) {
    struct Row {
        const char* name;
        int step;
        const char* neighbour;
    };
    for (const Row& row : {Row{"run-3.vco", 1, "run-4.vco"}, Row{"run-3.vco", -1, "run-2.vco"},
                           Row{"a-b.c-09.vco", 1, "a-b.c-10.vco"}, Row{"run-9", 1, "run-10.vco"},
                           Row{"run-0.vco", -1, ""}, Row{"run3.vco", 1, ""},
                           Row{"run-x.vco", 1, ""}, Row{"run-.vco", 1, ""}, Row{"", 1, ""},
                           Row{"run-2147483647.vco", 1, ""}, Row{"r-99999999999999.vco", 1, ""}})
        EXPECT_EQ(neighbourName(row.name, row.step), row.neighbour) << row.name;
}

TEST(SessionWatch, CountsWithoutGaps) {
    const Session session{{"r-1.vco", "r-2.vco", "r-4.vco", "1.vco"}};
    EXPECT_EQ(session.count("r-2.vco"), 2);
    EXPECT_EQ(session.count("q-1.vco"), 0);
    EXPECT_EQ(session.count("r.vco"), 0);
    EXPECT_EQ(session.count("r-1"), 0);
}

TEST(SessionWatch, DecidesWhatToDo) {
    const Session session{{"run-2.vco", "run-3.vco", "run-4.vco"}};
    WatchState state = watching("run-3.vco");
    WatchOutcome outcome = session.look(state);
    EXPECT_EQ(outcome.action, WatchAction::Offer);
    EXPECT_TRUE(outcome.previousExists && outcome.nextExists);

    state.autoStartRun = true;
    EXPECT_EQ(session.look(state).action, WatchAction::StartRun);
    state.autoStartRun = false;
    state.autoStartPending = true;
    EXPECT_EQ(session.look(state).action, WatchAction::StartRun);
    state.runFinished = true;
    EXPECT_EQ(session.look(state).action, WatchAction::ShowFinished);

    EXPECT_FALSE(session.look(watching("run-4.vco")).nextExists);
    EXPECT_EQ(session.look(watching("run-5.vco")).action, WatchAction::Wait);
    EXPECT_EQ(session.look(watching("")).action, WatchAction::Wait);
    state.settingsDirectory = "/elsewhere/";
    EXPECT_EQ(session.look(state).action, WatchAction::FolderMissing);
    state.settingsDirectory.clear();
    EXPECT_EQ(session.look(state).action, WatchAction::FolderMissing);
}

TEST(SessionWatch, AdvancesOneByOneAndOnlyToNewFiles) {
    Session session{{"r-1.vco", "r-2.vco"}};
    WatchState state = watching("r-2.vco");
    state.autoAdvanceRun = true;
    state.runFinished = true;
    WatchOutcome outcome = session.look(state);
    EXPECT_FALSE(outcome.advanceTo) << "files that were there at the start are not run";
    EXPECT_EQ(outcome.highestRunNumber, 2);

    session.files << "r-3.vco"
                  << "r-4.vco";
    for (const char* expected : {"r-3.vco", "r-4.vco"}) {
        state.highestRunNumber = outcome.highestRunNumber;
        outcome = session.look(state);
        ASSERT_TRUE(outcome.advanceTo);
        EXPECT_EQ(*outcome.advanceTo, expected);
        state.settingsFileName = expected;
    }
    state.highestRunNumber = outcome.highestRunNumber;
    EXPECT_FALSE(session.look(state).advanceTo);
    state.highestRunNumber = 3;
    state.autoAdvanceRun = false;
    EXPECT_FALSE(session.look(state).advanceTo);
}

TEST(SessionWatch, WritesFileNamesAsText) {
    EXPECT_EQ(waitingText(9, "a%2<b>-1.vco"),
              "<body style=\"font-size:9pt\"> Current settings file: "
              "\"<b>a%2&lt;b&gt;-1.vco</b>\" not available.<br><br>Waiting...<br></body>");
}

} // namespace
