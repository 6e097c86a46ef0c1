// The real window with the feedback of three regions, on its screen and on the subject's, for a run
// that a simulated scanner writes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live_scan.h"

#include "run/window/velo_cortivo.h"

#include <QComboBox>
#include <QTemporaryDir>

/// Moments of one analysed volume.
struct VolumeMoments {
    int measured = 0;             ///< its index with the skipped ones
    BenchClock::time_point read;  ///< its files have settled and are read
    BenchClock::time_point shown; ///< its feedback is on both screens and in the folder
    double sinceNoticed = 0.0;    ///< milliseconds from its last file's being seen to `shown`
};

class FeedbackWindow : public RunListener {
public:
    explicit FeedbackWindow(const QString& folder)
        : window_(foldersBelow(folder), pump_), opener_(*this) {
        (void)window_.readMasterFile();
        window_.initVars();
        window_.applyWindowSize();
        window_.show();
        window_.session().listeners.add(*this, ListenerPlace::Decoder); // behind the feedback
        window_.session().listeners.add(opener_, ListenerPlace::Player);
    }

    /// Runs the scan, which a thread writes meanwhile, to its end.
    void run(const SimulatedScan& scan) {
        skipped_ = scan.options().nrOfVolumesToSkip;
        window_.setSettingsFile(scan.options().folder + '/' + scan.options().name + "-1.vco");
        window_.timerCheckState();
        window_.slotRealTimeAnalysis();
        QDir::setCurrent(QDir::tempPath()); // a run works in its folder
    }

    /// Of the volumes that had feedback.
    [[nodiscard]] std::vector<VolumeMoments> moments() const {
        return {moments_.begin() + std::min(ptrdiff_t(firstLiveVolume), std::ssize(moments_)),
                moments_.end()};
    }

    bool beforeVolume(const VolumeAtHand&) override {
        read_ = BenchClock::now();
        return true;
    }
    bool drawSubjectDisplay(const VolumeAtHand& hand) override {
        moments_.push_back(
            {skipped_ + hand.volume, read_, BenchClock::now(),
             double(pump_.milliseconds() - window_.session().report.times.noticedAt)});
        return false;
    }

private:
    /// Opens the feedback when the first volume is over.
    class Opener : public RunListener {
    public:
        explicit Opener(FeedbackWindow& owner) : owner_(owner) {}
        void endOfVolume(const VolumeAtHand& hand) override {
            if (hand.volume == 0)
                owner_.openFeedback();
        }

    private:
        FeedbackWindow& owner_;
    };

    static StandardFolders foldersBelow(const QString& folder) {
        StandardFolders folders;
        folders.applicationDataPath = folder + "/app/";
        folders.dataPath = folder + "/data/";
        folders.homePath = folder + "/";
        createStandardFolders(folders);
        return folders;
    }

    void openFeedback() {
        window_.slotShowNeurofeedbackDlg();
        if (auto* screens = window_.findChild<QComboBox*>("SubjectScreenCmBx"))
            screens->setCurrentIndex(screens->findText("In a window"));
        RunSession& session = window_.session();
        const VolumeSize size = session.functionalDocument->project.size();
        for (int i = 0; i < 3; ++i)
            (void)session.regions.selectRectangle({.slice = size.slices / 2 + i,
                                                   .left = size.x / 3,
                                                   .right = size.x / 2,
                                                   .top = size.y / 3,
                                                   .bottom = size.y / 2});
        session.feedback.change(
            [](FeedbackChoices& choices) { choices.roiMode = useROI1And2And3; });
    }

    QtEventPump pump_;
    VeloCortivo window_;
    Opener opener_;
    int skipped_ = 0;
    BenchClock::time_point read_;
    std::vector<VolumeMoments> moments_;
};
