// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_watch.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

/// A folder "/s/" with these files.
struct Session {
    QStringList files;

    [[nodiscard]] WatchOutcome look(const WatchState& state) const {
        return lookAtSession(
            state, [](const QString& folder) { return folder == "/s/"; },
            [this](const QString& path) {
                return path.startsWith("/s/") && files.contains(path.mid(3));
            });
    }
};

WatchState watching(const QString& name) {
    WatchState state;
    state.settingsDirectory = "/s/";
    state.settingsFileName = name;
    return state;
}

TEST(SessionWatch, NamesNeighbours) {
    for (const auto& [name, step, neighbour] :
         std::vector<std::tuple<QString, int, QString>>{{"a-b.c-09.vco", 1, "a-b.c-10.vco"},
                                                        {"run-9", 1, "run-10.vco"},
                                                        {"run-0.vco", -1, ""},
                                                        {"run3.vco", 1, ""},
                                                        {"run-.vco", 1, ""},
                                                        {"", 1, ""},
                                                        {"run-2147483647.vco", 1, ""}})
        EXPECT_EQ(neighbourName(name, step), neighbour) << name.toStdString();
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
    state.settingsDirectory = "/elsewhere/";
    EXPECT_EQ(session.look(state).action, WatchAction::FolderMissing);
}

TEST(SessionWatch, AdvancesOneByOneAndOnlyToNewFiles) {
    Session session{{"r-1.vco", "r-2.vco", "r-9.vco"}}; // counted up to the gap
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

} // namespace
