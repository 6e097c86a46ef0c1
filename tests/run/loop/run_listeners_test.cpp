// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_listeners.h"

#include "run/document/qt_cortivo_doc.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

/// Notes its name in the hooks of a volume, and does at the end of it what a test says.
class Named : public RunListener {
public:
    Named(QStringList& log, const char* name) : log_(log), name_(name) {}
    std::function<void()> then = [] {};
    bool answer = false; ///< that the run goes on, or that it has drawn

    void endOfVolume(const VolumeAtHand&) override {
        log_ << name_;
        const auto action = then; // which may set another
        action();
    }
    bool atStep(VolumeStep, const VolumeAtHand&) override { return log_ << name_, answer; }
    bool drawSubjectDisplay(const VolumeAtHand&) override { return log_ << name_, answer; }

private:
    QStringList& log_;
    QString name_;
};

class RunListenersTest : public testing::Test {
protected:
    QString called() {
        log_.clear();
        listeners_.endOfVolume({document_, 0});
        return log_.join(' ');
    }

    QtCortivoDoc document_{QtCortivoDoc::Kind::Functional};
    RunListeners listeners_;
    QStringList log_;
    Named logs_{log_, "logs"};
    Named views_{log_, "views"};
    Named plots1_{log_, "plots1"};
    Named plots2_{log_, "plots2"};
    Named dialog_{log_, "dialog"};
};

} // namespace

TEST_F(RunListenersTest, AreCalledByPlaceAndThenByArrival) {
    listeners_.add(dialog_, ListenerPlace::Dialogs);
    listeners_.add(plots1_, ListenerPlace::Plots);
    listeners_.add(logs_, ListenerPlace::Logs);
    listeners_.add(plots2_, ListenerPlace::Plots);
    listeners_.add(views_, ListenerPlace::Views);
    EXPECT_EQ(called(), "views plots1 plots2 logs dialog");
    listeners_.add(plots1_, ListenerPlace::Dialogs);
    EXPECT_EQ(called(), "views plots2 logs dialog plots1") << "one place each";
    listeners_.remove(views_);
    EXPECT_EQ(called(), "plots2 logs dialog plots1");
}

TEST_F(RunListenersTest, OneThatEndsTheRunIsTheLastToBeCalledButAllDraw) {
    listeners_.add(views_, ListenerPlace::Views);
    listeners_.add(plots1_, ListenerPlace::Plots);
    for (const bool answer : {false, true}) {
        views_.answer = answer;
        log_.clear();
        EXPECT_FALSE(listeners_.atStep(VolumeStep::Plots, {document_, 0}));
        EXPECT_EQ(log_.join(' '), answer ? "views plots1" : "views");
        log_.clear();
        EXPECT_EQ(listeners_.drawSubjectDisplay({document_, 0}), answer);
        EXPECT_EQ(log_.join(' '), "views plots1");
    }
}

TEST_F(RunListenersTest, MayLeaveAndJoinInAHook) {
    auto leaving = std::make_unique<Named>(log_, "leaving");
    listeners_.add(views_, ListenerPlace::Views);
    listeners_.add(*leaving, ListenerPlace::Plots);
    listeners_.add(dialog_, ListenerPlace::Dialogs);
    views_.then = [&] { leaving.reset(); };
    dialog_.then = [&] {
        listeners_.add(plots1_, ListenerPlace::Plots);
        listeners_.add(plots2_, ListenerPlace::Plots);
        listeners_.remove(plots2_);
    };
    EXPECT_EQ(called(), "views dialog");
    views_.then = dialog_.then = [] {};
    EXPECT_EQ(called(), "views plots1 dialog");

    // A hook that processes events may call further hooks.
    views_.then = [&] {
        views_.then = [] {};
        listeners_.endOfVolume({document_, 1});
        listeners_.remove(dialog_);
    };
    EXPECT_EQ(called(), "views views plots1 dialog plots1");
    EXPECT_EQ(called(), "views plots1");
}

TEST_F(RunListenersTest, OneOfTheTwoMayGoFirst) {
    auto list = std::make_unique<RunListeners>();
    list->add(plots1_, ListenerPlace::Plots);
    list.reset();
    listeners_.add(plots1_, ListenerPlace::Plots);
    {
        Named brief(log_, "brief");
        listeners_.add(brief, ListenerPlace::Views);
    }
    EXPECT_EQ(called(), "plots1");
}
