// What the operator changes while a run is recorded, kept for a recovery.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/operator_requests.h"
#include "run/loop/run_listeners.h"

/// Records thresholds and the selection, colours and conjunction of the contrasts, and sets them
/// again when the run is played.
class OperatorRecords : public RunListener {
public:
    OperatorRecords(RunListeners& listeners, OperatorRequests& requests)
        : listeners_(listeners), requests_(requests) {
        listeners.add(*this, ListenerPlace::Views);
    }

    /// To be called after each change while a run is prepared or recorded.
    void changed();

    void documentsLeaving() override { document_ = nullptr; }
    void documentsArrived(QtCortivoDoc& functional) override { document_ = &functional; }
    /// What was changed while the first file was waited for came before there was a journal.
    void runPrepared(QtCortivoDoc&) override { changed(); }
    void recordPlayed(const RunRecord& record) override;

private:
    RunListeners& listeners_;
    OperatorRequests& requests_;
    QtCortivoDoc* document_ = nullptr;
};
