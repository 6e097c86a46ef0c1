// A dry run: the feedback of a protocol with a made-up signal, before anyone lies in the scanner.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_frame.h"
#include "run/protocol/stimulation_protocol.h"

enum class MadeUpSignal {
    None,          ///< a constant: what a subject sees whose brain doesn't respond
    IdealResponse, ///< all conditions but the baseline bring the response of the model
    Noise,         ///< a constant with white noise
};

struct DryRunOptions {
    MadeUpSignal signal = MadeUpSignal::IdealResponse;
    double amplitude = 2.0; ///< percent: of the greatest response, or the noise's deviation
    int nrOfVolumes = 0;
    int nrOfRegions = 3; ///< all with the same signal
    float TR = 2000.0f;  ///< milliseconds
};

/// One value for each volume, around 1000. The noise is the same each time. Empty when memory runs
/// out.
[[nodiscard]] std::vector<float> madeUpCurve(const DryRunOptions& options,
                                             const StimulationProtocol& protocol);

/// From which volume on the subject sees a level against a baseline, and why not before, for the
/// operator. Of a curve or a classifier: from which volume on it is shown.
struct FeedbackForecast {
    int firstVolume = -1;       ///< from 0; -1 when there is none in the whole run
    std::vector<int> baselines; ///< volumes, from 0, at which a block that has ended gives one
    QString text;
};
/// Passes a constant signal through the levels. Output that is blocked counts as shown.
[[nodiscard]] FeedbackForecast forecastFeedback(const FeedbackChoices& choices,
                                                const StimulationProtocol& protocol,
                                                int nrOfVolumes, float TR);

/// Steps through the volumes in the same way as a run does. Without a region that is chosen, ROI 1
/// is; the percent signal change stands in for a classifier's output. Without memory for the signal
/// there are no volumes.
class FeedbackDryRun {
public:
    FeedbackDryRun(const FeedbackChoices& choices, StimulationProtocol protocol,
                   const DryRunOptions& options);

    [[nodiscard]] int nrOfVolumes() const { return options_.nrOfVolumes; }
    [[nodiscard]] int volume() const { return volume_; } ///< the one shown; -1 before the first
    /// Shows a volume, from 0: those before it are passed through first, since levels rest on them.
    /// Nothing happens outside the run.
    void goTo(int volume);
    [[nodiscard]] const FeedbackValues& values() const { return levels_.values(); }
    [[nodiscard]] const FeedbackFrame& frame() const { return frame_; }
    [[nodiscard]] QString conditionName() const; ///< of the volume shown
    /// As they are after what the run has changed: the maxima may follow.
    [[nodiscard]] const FeedbackChoices& choices() const { return choices_; }
    [[nodiscard]] FeedbackSignals signalsNow() const;

private:
    void restart();

    FeedbackChoices chosen_;  ///< at the start
    FeedbackChoices choices_; ///< now
    StimulationProtocol protocol_;
    DryRunOptions options_;
    QStringList conditionNames_;
    VolumeTables tables_;
    std::vector<float> curve_;
    FeedbackLevels levels_;
    FeedbackFrame frame_;
    int firstFitted_ = 0; ///< volume from which on the regions have a model, where it is used
    int volume_ = -1;
};
