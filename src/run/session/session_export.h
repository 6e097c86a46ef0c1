// Giving the run in memory to other programs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "run/loop/run_listeners.h"

class RunSession;

/// A member of the session.
class SessionExport : public RunListener {
public:
    explicit SessionExport(RunSession& session);

    /// Why nothing can be exported now; empty when something can.
    [[nodiscard]] QString hindrance() const;
    /// Asks for a name, then as below. The next run, which may start by itself, takes the question
    /// back: the name would be that of the run before.
    void chooseFileAndExport();
    /// Series, maps and mask of the run in memory; see exportResults(). It is long work, which can
    /// be cancelled. False when that was done, without a run, after an information unless the
    /// session is idle, and after a message when a file can't be written.
    bool exportAsNifti(const QString& path);

    void documentsLeaving() override { chooser_.close(); }

private:
    RunSession& session_;
    OpenChooser chooser_;
};
