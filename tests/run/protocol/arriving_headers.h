// Headers of the protocols that arrive during a run, for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

inline const QString rtpHeader =
    "FileVersion: 1\nResolutionOfTime: Volumes\nExperiment: Blocks\n"
    "NrOfConditions: 3\n\"Rest ing\" 100 100 100 no\n"
    "\"Faces\" 255 0 0 yes\n\"Houses\" 0 0 300 YES\n"
    "Contrasts: 2\nNames: \"Faces > Houses\" \"all\"\n"
    "Weights: 0 1 -1\n-2 1 1\nStates: 1 0\nColors: 1 2 3 4 5 6\n"
    "BackgroundColor: 7 8 9\nTextColor: 10 11 12\nTimeCourseColor: 13 14 15\n"
    "TimeCourseThick: 4";

/// The header above with another request instead of its table of contrasts.
inline QString rtpHeaderWith(const QString& contrasts) {
    return rtpHeader.section("Contrasts: ", 0, 0) + "Contrasts: " + contrasts +
           "\nBackgroundColor" + rtpHeader.section("BackgroundColor", 1);
}

inline const QString tdatHeader =
    "0 HEADER TDATFILEVERSION 5\n0 HEADER SCANNERVOLUMEDURATION 1000\n"
    "0 HEADER RUNCONDITION blocks\n0 HEADER MOTIONCORRECTION 0\n"
    "0 HEADER RESPONSEWINDOWFORMAT 1\n0 HEADER FMRIANALYSISTESTS tests:Block\n"
    "0 HEADER CONDITIONTABLEBEGIN 4\n0 HEADER COLUMNS 5\n"
    "0 HEADER CONDITION NAME Rest COLOR 90,90,90 yes\n"
    "0 HEADER CONDITION NAME Faces COLOR 255,0,0 YES\n"
    "0 HEADER CONDITION NAME Cue COLOR 1,1,1 NO\n"
    "0 HEADER CONDITION NAME Houses COLOR 0,0,255 YES\n"
    "0 HEADER CONDITIONTABLEEND\n"
    "0 HEADER CONTRASTTABLEBEGIN 2\n0 HEADER COLUMNS 5\n"
    "0 HEADER CONTRAST 1 F-H 9,8,7 WEIGHTS 4 -1 Houses 0 Cue 1 Faces 0 Rest\n"
    "0 HEADER CONTRAST 2 F 6,5,4 WEIGHTS 1 1 Faces\n"
    "0 HEADER CONTRASTTABLEEND\n";
