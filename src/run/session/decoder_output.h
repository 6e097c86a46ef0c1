// The files that the letter decoder leaves: its log, the scaled weights, and pictures.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_settings.h"
#include "run/loop/feedback_files.h"

/// Where the results of the data go that are decoded.
struct DecoderPlace {
    QString folder;         ///< the target folder, or that of a file of curves
    QString dataName;       ///< that of the project or of the file; may be empty
    bool isWritable = true; ///< inside the program nothing is written, which is no fault

    /// Auto-Decoded.txt for data without a name, else `_AUTODECODED_<name>.txt`.
    [[nodiscard]] QString logPath() const;
};

class DecoderOutput {
public:
    /// Before a letter is decoded: makes the folder and the log where they are missing. False after
    /// a warning, when the log can't be opened; the letter is skipped then.
    [[nodiscard]] bool prepareLog(const DecoderPlace& place);
    /// What can't be written all the same is a fault().
    void appendLetter(const DecoderPlace& place, const QString& text);
    /// ScaledTaskVOIWeights.txt, unless there is no folder yet. Warns when that fails.
    static void writeScaledWeights(const DecoderPlace& place, const TaskWeights& scaled);

    /// A run begins, whose displays go into the feedback folder as `LetterDisplay-<volume>.png`.
    void beginDisplays(const QString& feedbackFolder);
    void writeDisplay(const QImage& picture, int volume) {
        displays_.writePicture(picture, volume);
    }
    /// The window with a letter, as `BOLDDecoder-<name>-<letter>.png`; without a feedback folder
    /// beside the log. The letter counts from 0 here.
    void writeWindow(const DecoderPlace& place, const QString& feedbackFolder,
                     const QImage& picture, int letter);

    /// What could not be written, for the operator; empty when all is well.
    [[nodiscard]] QString fault() const;

private:
    FeedbackFiles displays_;
    FeedbackFiles windows_;
    QString logFault_;
};
