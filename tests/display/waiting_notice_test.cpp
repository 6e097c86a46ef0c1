// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/waiting_notice.h"

#include "run/loop/session_fixture.h"

#include <QTimer>

namespace {

/// A wait for run-0001.dcm that begins at 0 milliseconds, in the area of the small window.
class Notice : public SessionFixture {
protected:
    Notice() {
        area.resize(716, 556);
        session.settings.TR = 1500;
        session.phase.enter(Phase::Preparing);
    }
    void await(const QStringList& names, const QString& missingPart = {}) {
        session.intake.fileWait =
            FileWait{{names, 2000, true}, missingPart, pump.milliseconds(), 60000};
    }
    [[nodiscard]] bool shownAfter(int milliseconds) {
        pump.pumpWait(milliseconds);
        notice.refresh();
        return notice.isVisibleTo(&area);
    }
    [[nodiscard]] bool tells(const QString& part) const { return notice.text().contains(part); }

    QtCortivoDoc document{QtCortivoDoc::Kind::Functional};
    QWidget area;
    WaitingNotice notice{session, pump, &area};
};

TEST_F(Notice, IsShownOverLongWaitsOnly) {
    for (const auto& [phase, TR, patience] : {std::tuple(Phase::Preparing, 1500.0f, 1000),
                                              {Phase::Recording, 1500.0f, 3000},
                                              {Phase::Recording, 500.0f, 2000}}) {
        session.phase.enter(phase);
        session.settings.TR = TR;
        await({path("run-0001.dcm")});
        EXPECT_FALSE(shownAfter(patience));
        EXPECT_TRUE(shownAfter(1));
        EXPECT_EQ(notice.height() == 556, phase == Phase::Preparing);
        EXPECT_TRUE(phase == Phase::Preparing || notice.height() * 3 <= 556);
        session.intake.fileWait.reset();
        EXPECT_TRUE(notice.beforeVolume({document, 0}));
        EXPECT_FALSE(notice.isVisibleTo(&area));
    }
    await({path("run-0001.dcm")});
    session.phase.enter(Phase::Saving);
    EXPECT_FALSE(shownAfter(10000));
}

TEST_F(Notice, TellsFileFolderTimesAndWhatIsThere) {
    await({path("run-0001.dcm")});
    ASSERT_TRUE(shownAfter(15300));
    for (const QString& part :
         {QString("Waiting for run-0001.dcm (at least 2,000 bytes)"), folder_.path(),
          QString("for 0:15; time left: 0:45"), QString("The run button stops the run")})
        EXPECT_TRUE(tells(part)) << part.toStdString() << '\n' << notice.text().toStdString();
    session.requests.interruptFlag = true;
    ASSERT_TRUE(shownAfter(45000));
    EXPECT_TRUE(tells("for 1:00; time left: 0:00"));
    EXPECT_TRUE(tells("The run stops once the file has come"));
}

TEST_F(Notice, LooksIntoTheFolderEveryTwoSeconds) {
    await({path("run-0001.dcm")});
    ASSERT_TRUE(shownAfter(1500));
    put("run-0002.dcm", "x");
    ASSERT_TRUE(shownAfter(1999));
    EXPECT_TRUE(tells("The folder is empty"));
    ASSERT_TRUE(shownAfter(1));
    EXPECT_TRUE(tells("Other number: \"run-0002.dcm\""));
}

TEST_F(Notice, NamesAlternativesAndMissingLines) {
    await({"/a/run.dcm", "/b/run.dcm"});
    ASSERT_TRUE(shownAfter(1500));
    EXPECT_TRUE(tells("/a/ or /b/"));
    await({"/a/1", "/a/2", "/a/3"});
    ASSERT_TRUE(shownAfter(1500));
    EXPECT_TRUE(tells("1 or one of 2 others")) << notice.text().toStdString();
    put("log.rtp", "x");
    await({path("log.rtp")}, "lines up to volume 3");
    ASSERT_TRUE(shownAfter(2500));
    EXPECT_TRUE(tells("Waiting for lines up to volume 3 in log.rtp"));
    QFile::remove(path("log.rtp"));
    ASSERT_TRUE(shownAfter(2500));
    EXPECT_TRUE(tells("The file has gone"));
}

TEST_F(Notice, IsRenewedOnlyDuringARun) {
    const auto runs = [this] { return notice.findChild<QTimer*>()->isActive(); };
    notice.documentsArrived(document);
    EXPECT_TRUE(runs());
    session.phase.enter(Phase::Saving);
    notice.loopEnded(document);
    EXPECT_FALSE(runs());
    session.phase.enter(Phase::Reloading);
    notice.documentsArrived(document);
    EXPECT_FALSE(runs());
}

} // namespace
