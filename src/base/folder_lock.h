// A mark in a folder that a program is working there.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

/// Keeps two programs from writing their results into the same folder. The mark is the file
/// "velo-cortivo.lock". It never grows old, so a long run keeps it; the mark of a program on this
/// computer that has gone is replaced. Of another computer nobody can tell whether its program
/// still works.
class FolderLock {
public:
    /// False when another program, or another lock of this one, holds the folder. True without a
    /// mark where none can be written: in a folder that is missing or read-only. A folder taken
    /// before is released.
    [[nodiscard]] bool take(const QString& folder);
    /// Who holds the folder that could not be taken, for a message: "process 12 on host x".
    [[nodiscard]] const QString& holder() const { return holder_; }
    /// Removes the mark of another program and takes the folder. False when that program is seen to
    /// work still; its mark stays.
    bool takeOver(const QString& folder);
    void release() { lock_.reset(); }

private:
    std::unique_ptr<QLockFile> lock_; ///< released by its destruction
    QString holder_;
};
