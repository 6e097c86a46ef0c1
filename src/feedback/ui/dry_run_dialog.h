// The dialog in which the operator tries the feedback of a protocol without a scanner.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "feedback/ui/subject_picture.h"
#include "run/session/run_session.h"

#include <QDialog>
#include <QTimer>
#include <memory>

class QPainter;

namespace Ui {
class FeedbackDryRunDlg;
}

/// Shows each volume of the planned run, or of the one in memory, with a made-up signal, and the
/// choices for the feedback as they are now. It rests while a run is prepared or recorded, and goes
/// with the settings file.
class FeedbackDryRunDlg : public QDialog, public RunListener {
    Q_OBJECT

public:
    /// Shows a picture to the subject.
    using Shown = std::function<void(const SubjectPicture&)>;

    FeedbackDryRunDlg(RunSession& session, Shown shown, QWidget* parent);
    ~FeedbackDryRunDlg() override;

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    void loopEnded(QtCortivoDoc& document) override;
    void settingsFileChanged() override;
    void feedbackChanged() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private Q_SLOTS:
    /// The next volume while it plays; the last one stops it.
    void advance();
    void togglePlaying();
    void savePictures();

private:
    struct Saving;

    void connectControls();
    /// False, after saying why, while a run is measured or without a protocol.
    [[nodiscard]] bool mayStep();
    void rest();
    void renew();
    void renewRun();
    void showVolume(int volume);
    void draw();
    void setPlaying(bool playing);
    void leaveSubject();
    [[nodiscard]] QSize frameSize() const;
    void beginSaving(const QString& path);
    void saveNext();
    void endSaving(const QString& outcome);

    RunSession& session_;
    const Shown shown_;
    const std::unique_ptr<Ui::FeedbackDryRunDlg> ui_;
    QTimer player_;
    QTimer saver_;
    std::unique_ptr<FeedbackDryRun> run_; ///< none without a protocol
    StimulationProtocol protocol_;
    bool outdated_ = true;
    bool subjectSees_ = false; ///< the subject's screen shows a picture of the dry run
    std::unique_ptr<Saving> saving_;
    OpenChooser chooser_; ///< of the pictures' place
};

/// Why there can be no dry run, for the operator; empty when there can.
[[nodiscard]] QString missingForDryRun(const RunSession& session,
                                       const StimulationProtocol& protocol);

/// Opens the dialog as a child of `window`, or raises it. `shown`, which may be empty, puts
/// pictures on the subject's screen, which the operator can choose to be done.
void openFeedbackDryRunDialog(RunSession& session, QWidget& window, FeedbackDryRunDlg::Shown shown);
