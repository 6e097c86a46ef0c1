// The display of all letters, by task, onset and duration.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QPixmap>
#include <QWidget>

/// Three rows of tasks; in each nine letters, by onset and then by duration. Above them stands
/// where in the time of a letter the subject is. The best three letters are filled with the colours
/// of their ranks; letters whose task is performed in the current stage are bright and underlined.
class LetterMatrix : public QWidget {
    Q_OBJECT

public:
    explicit LetterMatrix(QWidget* parent = nullptr);

    /// -1 for the cue, before each letter.
    void setStage(int stage);
    [[nodiscard]] int stage() const { return stage_; }
    /// Nothing for no marks. `fourLetters`: only those that the four-letter mode can find are
    /// shown, under their names.
    void setBest(const std::optional<LetterDecoding>& decoding, bool fourLetters);
    /// The place of a letter in the widget.
    [[nodiscard]] QRectF cell(const LetterCode& code) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRectF lettersArea() const;
    [[nodiscard]] double captionHeight() const;
    void paintCaptions(QPainter& painter) const;
    void paintLetter(QPainter& painter, const LetterCode& code) const;

    int stage_ = -1;
    bool fourLetters_ = false;
    std::array<RankedLetter, 3> best_;
    QPixmap picture_; ///< of the stage
};
