// What the operator chooses for the feedback to the subject.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

/// Which regions give the signal. The numbers stand in files and in the buttons' order.
enum ROIMode {
    noROIMode = -1,
    useROI1,
    useROI2,
    useROI3,
    useROI1And2,
    useROI1And3,
    useROI2And3,
    useROI1And2And3
};
inline constexpr int nrOfROIModes = 7;

/// What the subject sees, and what each volume leaves in the feedback folder. The numbers stand in
/// journals.
enum class FeedbackType { Thermometer, TimeCourse, PongSubject1, PongSubject2, Delayed };
inline constexpr int nrOfFeedbackTypes = 5;

inline constexpr int thermometerSteps = 10;

/// Shifts and numbers of past values count volumes; maxima are percent signal change.
struct FeedbackChoices {
    int roiMode = noROIMode;
    bool UseSVMOutput = false; ///< the classifier instead of regions
    FeedbackType type = FeedbackType::Thermometer;
    bool BlockOutput = false;   ///< the subject sees no level
    bool VisualizeROIs = false; ///< a thermometer for each region of a pair, else their mean
    std::array<float, 3> MaxPSC = {2.0f, 2.0f, 2.0f}; ///< that fills the scale, for ROI 1, 2, 3
    bool SetToMaxValue = false;                       ///< the maxima follow the signal
    int NrOfPastValues = 3;                           ///< of the running mean; below 2 for none
    int DisplayBaseLevel = 0;                         ///< 0 to 10
    bool UseTCGLMB0ForBaseline = false;
    bool ShowConditionNameAsInstruction = true;
    bool ShowValues = false;
    int NoFbCondition = -1; ///< during which nothing is shown; -1 for none
    int NoFbStartShift = 3;
    int NoFbStopShift = 2;
    int BaselineCondition = 0; ///< its blocks give the baseline; always the first one
    int BaselineStartShift = 3;
    int BaselineEndShift = 2;
    bool ArrowMode = false; ///< an arrow instead of the box of the target
    int ArrowLevel = 7;

    bool operator==(const FeedbackChoices&) const = default;
};

/// The regions of a mode, as positions in the list of regions; the first `count` of `region`. No
/// mode has none.
struct ROIsOfMode {
    std::array<int, 3> region{};
    int count = 0;
};
[[nodiscard]] ROIsOfMode roisOfMode(int roiMode);
/// A run with this many regions can use the mode.
[[nodiscard]] bool isModeAvailable(int roiMode, int nrOfRegions);
/// Each region of the mode has a thermometer of its own.
[[nodiscard]] bool showsPair(const FeedbackChoices& choices);
/// What becomes of the mode when the regions have changed: one whose regions are gone is given up;
/// without a mode, and without the classifier, the first region is taken if there is one.
void settleROIMode(FeedbackChoices& choices, int nrOfRegions);

/// Takes the classifier's output: no regions, and the base line in the middle of the scale.
void chooseClassifierOutput(FeedbackChoices& choices);
/// Takes delayed feedback, which is output: it isn't blocked.
void chooseDelayedFeedback(FeedbackChoices& choices);
/// The classifier predicts no longer: ROI 1 takes its place.
void giveUpClassifierOutput(FeedbackChoices& choices, int nrOfRegions);

/// The maxima that the two fields show for the mode, with the two decimals and the range of the
/// fields; the second of a mode without a pair is not used and 0. Of the classifier, 1.5.
struct ShownMaxima {
    double first = 0.0;
    double second = 0.0;
};
[[nodiscard]] ShownMaxima shownMaxima(const FeedbackChoices& choices);
/// The same with the fields' decimals and range, for any value.
[[nodiscard]] double asShown(double maximum);
/// Takes what the operator wrote into the fields, by mode: a region, the regions of a pair, or all
/// three.
void storeMaxima(FeedbackChoices& choices, const ShownMaxima& maxima);

inline constexpr double smallestMaxPSC = 0.01;
inline constexpr double largestMaxPSC = 100.0;
inline constexpr double maximumOfClassifier = 1.5;

/// Shifts of 6 seconds and of 2, in volumes of `TR` milliseconds, into those of baseline and of no
/// feedback. Without a TR they stay.
void setShiftsForTR(FeedbackChoices& choices, float TR);

/// To a whole number as all levels are rounded: a value below 0 is shifted up by the whole part of
/// (value - 1), then 0.5 is added and the fraction cut. So 2.5 gives 3 and -2.5 gives -2. What is
/// not finite gives 0; values beyond a billion are clamped.
[[nodiscard]] int roundedLevel(double value);
