// Two runs on disk and a project that lists them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/session_fixture.h"

/// 4 x 3 voxels of slice 1.
inline constexpr VoxelRectangle drag{1, 2, 6, 1, 4};

class MultiRunFixture : public SessionFixture {
protected:
    /// Two saved runs, "one" of 40 and "two" of 30 volumes, which has another condition.
    MultiRunFixture() {
        record("one", 40, defaultProtocol());
        record("two", 30, defaultProtocol().replace("Houses", "Tools"));
        QDir(folder_.path()).mkdir("both");
        list("\"one\" \"two.vco\" \"./one.vco\"");
    }
    void record(const QString& name, int volumes, const QString& protocol) {
        writeSession(
            volumes, 0,
            {{"TargetFolder:", "\"./" + name + "\""}, {"ProjectName:", "\"" + name + "\""}},
            protocol);
        session.runButtonPressed();
        ASSERT_TRUE(session.report.savedCompletely);
        put(name + ".vco", content("test-1.vco"));
    }
    /// Writes the project and makes it current. `files` are the names, and what follows them.
    void list(const QString& files, bool separatePredictors = false) {
        put("all.mvco", ("FileVersion: 4 MergeType: 1 Title: \"\" ParadigmHelpFile: \"\" "
                         "IFISfMRIAnalysisTests: t IFISfMRIAnalysisOptions: t "
                         "MergeAverageTimeCourse: 0 MergeSeparatePredictors: " +
                         QString::number(separatePredictors) +
                         " TargetFolder: \"./both\" ProjectName: \"both\" MergeFiles: " + files)
                            .toUtf8());
        session.changeSettingsFile(path("all.mvco"));
        session.requests.thresholds.Threshold = 100.0f; // the whole rectangle is taken
        display.calls.clear();
        session.setRunButton(RunButtonState::Ready);
    }
    [[nodiscard]] bool analysed() {
        session.runButtonPressed();
        EXPECT_TRUE(session.phase.isIdle());
        return session.report.runFinished;
    }
};
