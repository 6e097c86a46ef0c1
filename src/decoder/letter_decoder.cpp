// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/letter_decoder.h"

#include <algorithm>
#include <utility>

void LetterDecoder::begin(DecoderSettings settings, ReferenceCurves references, Source source) {
    *this = {};
    settings_ = std::move(settings);
    references_ = std::move(references);
    source_ = source;
}

void LetterDecoder::restart(int nrOfTimePoints) {
    settings_.NrOfTimePoints = nrOfTimePoints;
    begin(settings_, references_, source_);
}

bool LetterDecoder::isReady() const {
    return settings_.NrOfTimePoints > 0 && settings_.NrOfDataROIs >= leastDecoderROIs &&
           settings_.NrOfDataROIs <= nrOfDecoderROIs && referencesFit(settings_, references_);
}

void LetterDecoder::changeScores(bool useCorr, bool useBeta) {
    settings_.UseCorr = useCorr;
    settings_.UseBeta = useBeta;
}

void LetterDecoder::changeABCDMode(bool on) {
    settings_.ABCDMode = on;
}

bool LetterDecoder::takeVolume(int volume) {
    if (!isReady())
        return false;
    volume_ = volume;
    const bool ends = windowEndsAt(settings_, volume);
    const bool endedBefore = std::exchange(windowEnded_, ends && source_ == Source::Run);
    const bool isDue = source_ == Source::Run ? endedBefore : ends;
    if (isDue)
        ++letter_;
    return isDue;
}

bool LetterDecoder::endRun() {
    if (!std::exchange(windowEnded_, false))
        return false;
    ++letter_;
    return true;
}

void LetterDecoder::goToPreviousLetter() {
    for (QString& text : texts_)
        text.chop(2);
    goTo(letter_ - 1);
}

void LetterDecoder::goTo(int letter) {
    letter_ = std::clamp(letter, 0, std::max(settings_.NrOfLetters, 1) - 1);
}

bool LetterDecoder::canDecode() const {
    return isReady() && letter_ < settings_.NrOfLetters && windowIsWhole(settings_, letter_);
}

std::optional<LetterDecoding> LetterDecoder::decode(const ROICurves& curves) {
    if (!canDecode())
        return std::nullopt;
    std::optional<LetterDecoding> decoding = decodeLetter(settings_, references_, curves, letter_);
    if (!decoding)
        return std::nullopt;
    for (size_t rank = 0; rank < texts_.size(); ++rank)
        texts_[rank] += decoding->best[rank].letter;
    latest_ = decoding;
    return decoding;
}
