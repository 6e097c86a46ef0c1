// What the run waits for, told over the slices while it waits for long.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/arrival.h"
#include "run/loop/run_listeners.h"

#include <QTextDocument>
#include <QTime>
#include <QTimer>
#include <QWidget>

class RunSession;
struct FileWait;

/// Lies over the area of the views: all of it before the first volume, and later a band at its top.
/// Shown once a wait has lasted longer than is usual: one second before the first volume, then two
/// TRs and at least two seconds. The mouse works on what is below.
class WaitingNotice : public QWidget, public RunListener {
public:
    /// `area` is the parent, whose size it follows.
    WaitingNotice(RunSession& session, const EventPump& pump, QWidget* area);

    /// Shows, renews or hides the notice, as the present wait wants it. A timer calls this once a
    /// second while a run is prepared or recorded.
    void refresh();
    /// What is shown, as plain text.
    [[nodiscard]] QString text() const { return text_.toPlainText(); }

    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] bool isLong(const FileWait& wait) const;
    void look(const FileWait& wait);
    [[nodiscard]] QStringList timesOf(const FileWait& wait) const;
    [[nodiscard]] bool isBand() const;
    /// Text, size and place for the area's present size.
    void fit();
    [[nodiscard]] QString html(qsizetype nrOfSimilar) const;

    RunSession& session_;
    const EventPump& pump_;
    QTimer timer_{this};
    QTextDocument text_;
    QTime since_; ///< of the wait that is shown
    qint64 shownStart_ = -1;
    FolderPace pace_;
    QStringList head_;    ///< four lines of HTML: file, folder, times, how to stop
    QStringList similar_; ///< plain lines, of its folder
};
