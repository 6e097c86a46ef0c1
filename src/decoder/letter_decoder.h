// The decoder of a run: which letter is due when, and what has been decoded so far.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QString>

/// Fed with volumes; a run that is measured and a file of curves pass through the same object. It
/// owns the settings and the references that are in use. A letter takes two steps, since there may
/// be something to prepare between them: it becomes the current one, and it is decoded.
class LetterDecoder {
public:
    /// Letters of a run are due one volume after their window is whole, those of a file at once.
    enum class Source { Run, File };

    /// Begins anew: no letters, no volumes. Without references nothing is decoded.
    void begin(DecoderSettings settings, ReferenceCurves references, Source source);
    /// The same with the settings and references in use, and perhaps another number of volumes.
    void restart() { restart(settings_.NrOfTimePoints); }
    void restart(int nrOfTimePoints);
    [[nodiscard]] bool isReady() const; ///< references fit the settings, points and ROIs are known
    [[nodiscard]] const DecoderSettings& settings() const { return settings_; }
    [[nodiscard]] const ReferenceCurves& references() const { return references_; }
    /// Choices that may change between two letters: scores, four-letter mode.
    void changeScores(bool useCorr, bool useBeta);
    void changeABCDMode(bool on);

    /// One volume, in the order of the run. Whether a letter is due, which is the current one then.
    [[nodiscard]] bool takeVolume(int volume);
    /// The run has ended. Whether a letter is due: that whose window ended with the last volume.
    [[nodiscard]] bool endRun();
    /// By the operator, not while a run is active: one letter on or back, clamped to the slots.
    /// Going back also takes two letters off each string, that from which it goes and that to which
    /// it goes, which is to be decoded anew; so it does at the first letter.
    void goToNextLetter() { goTo(letter_ + 1); }
    void goToPreviousLetter();

    /// Whether the current letter has a slot and its window lies within the data.
    [[nodiscard]] bool canDecode() const;
    /// Decodes the current letter and appends it to the decoded texts. `curves` hold the volumes so
    /// far, at least. Nothing where it can't be decoded, or the curves are too short.
    std::optional<LetterDecoding> decode(const ROICurves& curves);

    [[nodiscard]] int currentLetter() const { return letter_; } ///< -1 at first
    [[nodiscard]] int currentVolume() const { return volume_; } ///< -1 at first
    /// All decoded letters of a rank (0 to 2), one character each.
    [[nodiscard]] const QString& decodedText(int rank) const { return texts_[size_t(rank)]; }
    /// The latest decoding.
    [[nodiscard]] const std::optional<LetterDecoding>& latest() const { return latest_; }

private:
    void goTo(int letter);

    DecoderSettings settings_ = defaultDecoderSettings();
    ReferenceCurves references_;
    Source source_ = Source::Run;
    int letter_ = -1;
    int volume_ = -1;
    bool windowEnded_ = false;
    std::array<QString, 3> texts_;
    std::optional<LetterDecoding> latest_;
};
