// The decoder of a run: which letter is due when, and what has been decoded so far.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QString>
#include <functional>

/// Fed with curves; a run that is measured and a file of curves pass through the same object.
class LetterDecoder {
public:
    /// Of a run (true) windows are decoded one volume after they are whole, of a file at once.
    enum class Source { Run, File };

    /// Begins anew: no letters, no curves. Without references nothing is decoded.
    void begin(DecoderSettings settings, ReferenceCurves references, Source source);
    /// Asked before each letter whose window is whole; where it gives false the letter is skipped:
    /// it is counted, but neither decoded nor appended. Without one all are decoded.
    void setGate(std::function<bool()> mayDecode) { mayDecode_ = std::move(mayDecode); }
    [[nodiscard]] bool isReady() const; ///< references fit the settings, points and ROIs are known
    [[nodiscard]] const DecoderSettings& settings() const { return settings_; }
    /// Choices that may change between two letters: scores, four-letter mode.
    void changeScores(bool useCorr, bool useBeta);
    void changeABCDMode(bool on);

    /// One volume, in the order of the run: `curves` hold the volumes 0 to `volume`, at least. The
    /// letter that was decoded at this volume; nothing as a rule.
    std::optional<LetterDecoding> takeVolume(int volume, const ROICurves& curves);
    /// The run has ended: decodes the window that ended with its last volume.
    std::optional<LetterDecoding> endRun(const ROICurves& curves);
    /// By the operator, not while a run is active: one letter on or back, clamped to the slots.
    /// Going back also takes two letters off each string, that from which it goes and that to which
    /// it goes, which is decoded anew; so it does at the first letter.
    std::optional<LetterDecoding> goToNextLetter(const ROICurves& curves);
    std::optional<LetterDecoding> goToPreviousLetter(const ROICurves& curves);
    /// The current letter once more, whose result is appended again.
    std::optional<LetterDecoding> processCurrentLetterWindow(const ROICurves& curves) {
        return decode(curves);
    }

    [[nodiscard]] int currentLetter() const { return letter_; } ///< -1 at first
    [[nodiscard]] int currentVolume() const { return volume_; } ///< -1 at first
    /// All decoded letters of a rank (0 to 2), one character each.
    [[nodiscard]] const QString& decodedText(int rank) const { return texts_[size_t(rank)]; }
    /// The latest decoding.
    [[nodiscard]] const std::optional<LetterDecoding>& latest() const { return latest_; }

private:
    std::optional<LetterDecoding> goTo(int letter, const ROICurves& curves);
    std::optional<LetterDecoding> decodeNext(const ROICurves& curves);
    std::optional<LetterDecoding> decode(const ROICurves& curves);

    std::function<bool()> mayDecode_;
    DecoderSettings settings_ = defaultDecoderSettings();
    ReferenceCurves references_;
    Source source_ = Source::Run;
    int letter_ = -1;
    int volume_ = -1;
    bool windowEnded_ = false;
    std::array<QString, 3> texts_;
    std::optional<LetterDecoding> latest_;
};
