// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_classifier.h"

SessionClassifier::SessionClassifier(const Parts& parts) : parts_(parts) {
    parts_.listeners.add(*this, ListenerPlace::Classification);
}
void SessionClassifier::open(ClassifierScreen& screen) {
    screen_ = &screen;
}
void SessionClassifier::close() {
    screen_ = nullptr;
}
void SessionClassifier::setOptions(const LiveOptions& options) {
    options_ = options;
}
void SessionClassifier::chooseModel(const QString& path) {
    modelPath_ = path;
}
void SessionClassifier::toggleIncrementalPrediction() {}
int SessionClassifier::nrOfClasses() const {
    return 0;
}
bool SessionClassifier::currentOutput(std::span<float> values) const {
    static_cast<void>(values);
    return false;
}
int SessionClassifier::predictedClass() const {
    return 0;
}
void SessionClassifier::settingsFileChanged() {}
void SessionClassifier::documentsLeaving() {
    document_ = nullptr;
}
void SessionClassifier::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
}
void SessionClassifier::runPrepared(QtCortivoDoc& functional) {
    static_cast<void>(functional);
}
bool SessionClassifier::atStep(VolumeStep step, const VolumeAtHand& hand) {
    static_cast<void>(step), static_cast<void>(hand);
    return true;
}
void SessionClassifier::loopEnded(QtCortivoDoc& document) {
    static_cast<void>(document);
}
void SessionClassifier::recordPlayed(const RunRecord& record) {
    static_cast<void>(record);
}
