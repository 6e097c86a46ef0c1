// Headers of the protocols that arrive during a run, for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/test_data.h"

inline const QString rtpHeader = corpusText("rtp/table.rtp").section("\nSCAN", 0, 0);

/// The header above with another request instead of its table of contrasts.
inline QString rtpHeaderWith(const QString& contrasts) {
    return rtpHeader.section("Contrasts: ", 0, 0) + "Contrasts: " + contrasts +
           "\nBackgroundColor" + rtpHeader.section("BackgroundColor", 1);
}

inline const QString tdatHeader = corpusText("tdat/tables.tdat")
                                      .section("10 SCAN RUNBEGIN", 0, 0)
                                      .replace("DURATION 1500", "DURATION 1000")
                                      .replace("MOTIONCORRECTION 1", "MOTIONCORRECTION 0");
