// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/termination_signals.h"

#include <QApplication>
#include <QSessionManager>
#include <gtest/gtest.h>

namespace {

volatile std::sig_atomic_t caughtBefore = 0;

} // namespace

TEST(TerminationSignals, TellTheEventLoopOnceAndLeaveNoTrace) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        const auto original = std::signal(signal, [](int) { caughtBefore = caughtBefore + 1; });
        caughtBefore = 0;
        int told = 0;
        {
            const TerminationSignals requests([&told] { ++told; });
            std::raise(signal);
            EXPECT_EQ(told, 0) << "not within the handler";
            for (int round = 0; round < 2; ++round) {
                QCoreApplication::processEvents();
                EXPECT_EQ(told, 1);
                std::raise(signal);
            }
        }
        EXPECT_EQ(caughtBefore, 0);
        std::raise(signal);
        EXPECT_EQ(caughtBefore, 1) << "as before";

        std::signal(signal, SIG_IGN); // as nohup does
        const TerminationSignals requests([&told] { ++told; });
        std::raise(signal);
        QCoreApplication::processEvents();
        EXPECT_EQ(told, 1);
        // A log-out comes in its own way.
        Q_EMIT qApp->commitDataRequest(*qApp->findChild<QSessionManager*>());
        EXPECT_EQ(told, 2);
        std::signal(signal, original);
    }
}
