// The operator's work on the feedback to the subject, and what a run does for it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/dry_run.h"
#include "feedback/feedback_table.h"
#include "run/document/operator_requests.h"
#include "run/loop/feedback_files.h"
#include "run/loop/run_feedback.h"
#include "run/loop/run_listeners.h"

#include <functional>

class EventPump;
class QPainter;
class SessionPhase;

/// What shows the feedback: the operator's dialog, and through it the subject's screen.
class FeedbackScreen {
public:
    virtual ~FeedbackScreen() = default;
    /// Of the frames, in pixels.
    [[nodiscard]] virtual QSize frameSize() const = 0;
    /// Draws the curve as the plot of its region does.
    virtual void paintCurve(QPainter& painter, QSize size, const FeedbackCurve& curve) = 0;
    /// There is another picture. Returns when it is on the screens.
    virtual void showPicture() = 0;
    /// Choices, values or what is possible may have changed, by whomever: the controls show them.
    virtual void refreshControls() = 0;
};

/// A member of the session. While a screen is open it computes the feedback of each volume, shows
/// it, and writes the files of the feedback folder and the table of the run (`_feedback.tsv`).
/// Without one it does nothing. Choices stay until another settings file is current.
class SessionFeedback : public RunListener {
public:
    struct Parts {
        const RunSettings& settings;
        const SessionPhase& phase;
        RunReport& report;
        OperatorRequests& requests;
        RunListeners& listeners;
        const EventPump& pump;
    };

    explicit SessionFeedback(const Parts& parts);

    /// The display opens: it begins with the thermometer, the maxima that came with the regions,
    /// shifts for the TR, and no baseline. In a run that goes on after a crash it is opened again
    /// as it was, once. The screen, which is not owned, must call close().
    void open(FeedbackScreen& screen);
    void close();
    [[nodiscard]] bool isOpen() const { return screen_ != nullptr; }

    [[nodiscard]] const FeedbackChoices& choices() const { return choices_; }
    /// Edits the choices, keeps them for a recovery, and shows what comes of them.
    void change(const std::function<void(FeedbackChoices&)>& edit);
    /// Computes and shows the current volume again; files are written by the loop alone.
    void update();

    /// Number of regions of the run in memory; 0 without one.
    [[nodiscard]] int nrOfRegions() const;
    [[nodiscard]] bool documentExists() const { return document_ != nullptr; }
    /// What is planned counts: there is no run in memory, or it is that of another settings file.
    [[nodiscard]] bool awaitsRun() const { return !document_ || settingsChanged_; }
    /// Whether the classifier's output can be chosen.
    [[nodiscard]] bool classifierPredicts() const;
    /// Not owned; null for none.
    void setClassifier(const ClassifierOutput* classifier);

    /// Of the run in memory; while a run is awaited, of the protocol that the settings name.
    [[nodiscard]] StimulationProtocol protocol() const;
    /// Names of the conditions with a column in the design, in the order of the columns, likewise.
    [[nodiscard]] QStringList modelledConditions() const;
    [[nodiscard]] float TR() const; ///< milliseconds, likewise
    [[nodiscard]] int nrOfVolumes() const;

    /// Delayed feedback does nothing until it has settings.
    [[nodiscard]] const std::optional<DelayedFeedbackSettings>& delayed() const { return delayed_; }
    void setDelayed(const DelayedFeedbackSettings& settings);
    [[nodiscard]] const QString& delayedMessage() const { return delayedMessage_; }

    [[nodiscard]] const FeedbackValues& values() const { return levels_.values(); }
    [[nodiscard]] const FeedbackFrame& frame() const { return frame_; }
    [[nodiscard]] const FeedbackCurve& curve() const { return curve_; }
    /// What is on the screens and goes into the folder.
    [[nodiscard]] const QImage& picture() const { return picture_; }
    /// Files that could not be written, for the operator; empty when all is well.
    [[nodiscard]] QString fault() const;

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    void regionsChanged(QtCortivoDoc& functional) override;
    void regionsLoaded(QtCortivoDoc& functional) override;
    void classifierChanged() override;
    bool drawSubjectDisplay(const VolumeAtHand& hand) override;
    void recordPlayed(const RunRecord& record) override;

private:
    void compute();
    void draw();
    void takeDefaults();
    void takeShifts();
    bool testClassifier();
    void noteChange();
    void writeFiles(int volume);
    void updateDelayedFeedback(int volume);
    void appendRow(const VolumeAtHand& hand, qint64 shownAt);

    Parts parts_;
    FeedbackScreen* screen_ = nullptr;
    QtCortivoDoc* document_ = nullptr;
    bool settingsChanged_ = false; ///< since the documents arrived
    const ClassifierOutput* classifier_ = nullptr;
    FeedbackChoices choices_;
    float shiftsTR_ = 0.0f; ///< that the shifts were computed for, milliseconds
    FeedbackLevels levels_;
    FeedbackFrame frame_;
    FeedbackCurve curve_;
    QImage picture_;
    FeedbackFiles files_;
    std::optional<DelayedFeedbackSettings> delayed_;
    QString delayedMessage_;
    QString tableFault_;
    int regionsInTable_ = -1; ///< columns of the table that is being written; -1 for none yet
    bool goesOn_ = false;     ///< the run goes on after a part that was played
    bool choicesAreRecorded_ = false; ///< they come from such a part, and no display has shown them
};
