// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_choices.h"

ROIsOfMode roisOfMode(int) {
    return {};
}
bool isModeAvailable(int, int) {
    return false;
}
void settleROIMode(FeedbackChoices&, int) {}
void chooseClassifierOutput(FeedbackChoices&) {}
void giveUpClassifierOutput(FeedbackChoices&, int) {}
ShownMaxima shownMaxima(const FeedbackChoices&) {
    return {};
}
double asShown(double maximum) {
    return maximum;
}
void storeMaxima(FeedbackChoices&, const ShownMaxima&) {}
void setShiftsForTR(FeedbackChoices&, float) {}
int roundedLevel(double value) {
    return int(value);
}
