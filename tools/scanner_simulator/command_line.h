// The command line of scanner-simulator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "delivery.h"

#include <QStringList>

struct SimulatorCommand {
    SimulationOptions simulation;
    DeliveryOptions delivery;
    int nrOfRuns = 1;
    bool settingsOnly = false;
    bool volumesGiven = false; ///< otherwise a replay delivers the whole folder
    QString replayFolder;      ///< empty: simulate
    QString helpText;          ///< not empty: show this and do nothing else
    QString problem;           ///< not empty: why the command is invalid
};

/// `arguments` begins with the name of the program.
[[nodiscard]] SimulatorCommand parseCommandLine(const QStringList& arguments);
