// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/letter_decoder.h"

#include <algorithm>
#include <utility>

void LetterDecoder::begin(DecoderSettings settings, ReferenceCurves references, Source source) {
    auto mayDecode = std::move(mayDecode_);
    *this = {};
    mayDecode_ = std::move(mayDecode);
    settings_ = std::move(settings);
    references_ = std::move(references);
    source_ = source;
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

std::optional<LetterDecoding> LetterDecoder::takeVolume(int volume, const ROICurves& curves) {
    if (!isReady())
        return std::nullopt;
    volume_ = volume;
    const bool ends = windowEndsAt(settings_, volume);
    const bool endedBefore = std::exchange(windowEnded_, ends && source_ == Source::Run);
    return (source_ == Source::Run ? endedBefore : ends) ? decodeNext(curves) : std::nullopt;
}

std::optional<LetterDecoding> LetterDecoder::endRun(const ROICurves& curves) {
    return std::exchange(windowEnded_, false) ? decodeNext(curves) : std::nullopt;
}

std::optional<LetterDecoding> LetterDecoder::goToNextLetter(const ROICurves& curves) {
    return goTo(letter_ + 1, curves);
}

std::optional<LetterDecoding> LetterDecoder::goToPreviousLetter(const ROICurves& curves) {
    for (QString& text : texts_)
        text.chop(2);
    return goTo(letter_ - 1, curves);
}

std::optional<LetterDecoding> LetterDecoder::goTo(int letter, const ROICurves& curves) {
    letter_ = std::clamp(letter, 0, std::max(settings_.NrOfLetters - 1, 0));
    return decode(curves);
}

std::optional<LetterDecoding> LetterDecoder::decodeNext(const ROICurves& curves) {
    ++letter_;
    return decode(curves);
}

std::optional<LetterDecoding> LetterDecoder::decode(const ROICurves& curves) {
    if (!isReady() || letter_ >= settings_.NrOfLetters || !windowIsWhole(settings_, letter_) ||
        (mayDecode_ && !mayDecode_()))
        return std::nullopt;
    std::optional<LetterDecoding> decoding = decodeLetter(settings_, references_, curves, letter_);
    if (!decoding)
        return std::nullopt;
    for (size_t rank = 0; rank < texts_.size(); ++rank)
        texts_[rank] += decoding->best[rank].letter;
    latest_ = decoding;
    return decoding;
}
