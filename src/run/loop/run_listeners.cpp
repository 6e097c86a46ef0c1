// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_listeners.h"

#include <algorithm>

RunListener::~RunListener() {
    stopListening();
}

void RunListener::stopListening() {
    if (list_)
        list_->remove(*this);
}

RunListeners::~RunListeners() {
    for (const std::vector<Entry>* entries : {&entries_, &joining_})
        for (const Entry& entry : *entries)
            if (entry.listener)
                entry.listener->list_ = nullptr;
}

void RunListeners::add(RunListener& listener, ListenerPlace place) {
    if (listener.list_)
        listener.list_->remove(listener);
    listener.list_ = this;
    if (callDepth_ > 0)
        joining_.push_back({&listener, place});
    else
        insert({&listener, place});
}

void RunListeners::insert(const Entry& entry) {
    const auto behind = std::upper_bound(
        entries_.begin(), entries_.end(), entry.place,
        [](ListenerPlace place, const Entry& other) { return place < other.place; });
    entries_.insert(behind, entry);
}

void RunListeners::remove(RunListener& listener) {
    listener.list_ = nullptr;
    for (std::vector<Entry>* entries : {&entries_, &joining_})
        for (Entry& entry : *entries)
            if (entry.listener == &listener)
                entry.listener = nullptr;
    if (callDepth_ == 0)
        settle();
}

void RunListeners::settle() {
    std::erase_if(entries_, [](const Entry& entry) { return entry.listener == nullptr; });
    for (const Entry& entry : joining_)
        if (entry.listener)
            insert(entry);
    joining_.clear();
}

bool RunListeners::callEach(const Call& call, const PlaceCalled& called) {
    ++callDepth_;
    bool goesOn = true;
    // Entries neither move nor vanish while callDepth_ is above 0.
    for (size_t i = 0; i < entries_.size() && goesOn; ++i)
        if (entries_[i].listener) {
            if (called)
                called(entries_[i].place);
            goesOn = call(*entries_[i].listener);
        }
    if (--callDepth_ == 0)
        settle();
    return goesOn;
}

void RunListeners::documentsLeaving() {
    callEach([](RunListener& listener) { return listener.documentsLeaving(), true; });
}

void RunListeners::documentsArrived(QtCortivoDoc& functional) {
    callEach([&](RunListener& listener) { return listener.documentsArrived(functional), true; });
}

void RunListeners::runPrepared(QtCortivoDoc& functional) {
    callEach([&](RunListener& listener) { return listener.runPrepared(functional), true; });
}

void RunListeners::samplesChanged() {
    callEach([](RunListener& listener) { return listener.samplesChanged(), true; });
}

void RunListeners::settingsFileChanged() {
    callEach([](RunListener& listener) { return listener.settingsFileChanged(), true; });
}

void RunListeners::playedRunStays(QtCortivoDoc& functional) {
    callEach([&](RunListener& listener) { return listener.playedRunStays(functional), true; });
}

void RunListeners::regionsChanged(QtCortivoDoc& functional) {
    callEach([&](RunListener& listener) { return listener.regionsChanged(functional), true; });
}

void RunListeners::regionsLoaded(QtCortivoDoc& functional) {
    callEach([&](RunListener& listener) { return listener.regionsLoaded(functional), true; });
}

void RunListeners::feedbackChanged() {
    callEach([](RunListener& listener) { return listener.feedbackChanged(), true; });
}

void RunListeners::classifierChanged() {
    callEach([](RunListener& listener) { return listener.classifierChanged(), true; });
}

void RunListeners::mapListChanged() {
    callEach([](RunListener& listener) { return listener.mapListChanged(), true; });
}

void RunListeners::pluginThresholdApplied(float shown) {
    callEach([&](RunListener& listener) { return listener.pluginThresholdApplied(shown), true; });
}

bool RunListeners::beforeVolume(const VolumeAtHand& hand, const PlaceCalled& called) {
    return callEach([&](RunListener& listener) { return listener.beforeVolume(hand); }, called);
}

bool RunListeners::atStep(VolumeStep step, const VolumeAtHand& hand, const PlaceCalled& called) {
    return callEach([&](RunListener& listener) { return listener.atStep(step, hand); }, called);
}

bool RunListeners::drawSubjectDisplay(const VolumeAtHand& hand) {
    bool drawn = false;
    callEach([&](RunListener& listener) {
        drawn = listener.drawSubjectDisplay(hand) || drawn;
        return true;
    });
    return drawn;
}

void RunListeners::endOfVolume(const VolumeAtHand& hand, const PlaceCalled& called) {
    callEach([&](RunListener& listener) { return listener.endOfVolume(hand), true; }, called);
}

void RunListeners::loopEnded(QtCortivoDoc& document) {
    callEach([&](RunListener& listener) { return listener.loopEnded(document), true; });
}

void RunListeners::record(const RunRecord& record) {
    callEach([&](RunListener& listener) { return listener.recordMade(record), true; });
}

void RunListeners::play(const RunRecord& record) {
    callEach([&](RunListener& listener) { return listener.recordPlayed(record), true; });
}
