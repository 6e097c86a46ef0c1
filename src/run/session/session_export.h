// Giving the run in memory to other programs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class RunSession;

/// A member of the session.
class SessionExport {
public:
    explicit SessionExport(RunSession& session) : session_(session) {}

    /// Why nothing can be exported now; empty when something can.
    [[nodiscard]] QString hindrance() const;
    /// Asks for a name, then as below.
    void chooseFileAndExport();
    /// Series, maps and mask of the run in memory; see exportResults(). It is long work, which can
    /// be cancelled. False when that was done, without a run, after an information unless the
    /// session is idle, and after a message when a file can't be written.
    bool exportAsNifti(const QString& path);

private:
    RunSession& session_;
};
