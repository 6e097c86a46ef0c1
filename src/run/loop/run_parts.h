// What preparation, loop and saving of one run work on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "intake/volume_reader.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_state.h"
#include "run/loop/loop_stations.h"
#include "run/loop/run_display.h"

struct RunParts {
    RunSettings& settings;
    RunState& state;
    IntakeState& intake;
    QtCortivoDoc& document;
    const LoopStations& stations;
    RunDisplay& display;
    EventPump& pump;
};
