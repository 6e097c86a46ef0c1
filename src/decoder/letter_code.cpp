// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/letter_code.h"

#include <array>

namespace {

const QString letters = QStringLiteral("_ABCDEFGHIJKLMNOPQRSTUVWXYZ");
static_assert(LetterCode::nrOfLetters == 27);

/// The letters that the four-letter mode can find, and what they stand for.
struct FourLetter {
    char16_t found;
    char16_t name;
};
constexpr std::array<FourLetter, 4> fourLetters{
    {{u'A', u'A'}, {u'E', u'C'}, {u'U', u'B'}, {u'Y', u'D'}}};

} // namespace

QChar letterOf(const LetterCode& code) {
    if (code.task < 0 || code.task >= LetterCode::nrOfTasks || code.reference < 0 ||
        code.reference >= LetterCode::nrOfReferences)
        return noLetter;
    return letters[code.task * LetterCode::nrOfReferences + code.reference];
}

std::optional<LetterCode> codeOf(QChar letter) {
    const auto index = int(letters.indexOf(letter == u' ' ? QChar(u'_') : letter.toUpper()));
    if (index < 0)
        return std::nullopt;
    return LetterCode{index / LetterCode::nrOfReferences, index % LetterCode::nrOfReferences};
}

QString referenceName(int reference) {
    const LetterCode code{0, reference};
    return QStringLiteral("%1-%2").arg(10 * (code.onset() + 1)).arg(10 * (code.duration() + 1));
}

bool isOfFourLetters(const LetterCode& code) {
    const QChar letter = letterOf(code);
    for (const FourLetter& four : fourLetters)
        if (letter == four.found)
            return true;
    return false;
}

QChar fourLetterName(QChar letter) {
    for (const FourLetter& four : fourLetters)
        if (letter == four.found)
            return four.name;
    return letter;
}
