// What preparation, loop and saving of one run work on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/folder_lock.h"
#include "base/worker_pool.h"
#include "intake/volume_reader.h"
#include "run/document/operator_requests.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/loop/run_display.h"
#include "run/loop/run_listeners.h"

struct RunParts {
    RunSettings& settings;
    SessionPhase& phase;
    RunReport& report;
    OperatorRequests& requests;
    IntakeState& intake;
    QtCortivoDoc& document;
    QtCortivoDoc& anatomical;
    RunListeners& listeners;
    RunDisplay& display;
    EventPump& pump;
    FolderLock& targetLock; ///< on the target folder, from preparation until the run is saved
    WorkerPool& workers;    ///< that share the loops over voxels

    /// As many threads as the settings ask for, once these are read.
    void setUpWorkers() const { workers.setNrOfThreads(nrOfUsableThreads(settings.NrOfThreads)); }
};
