// What is recorded of the letter decoder of a run: its preparation by the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_settings.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// Name of the records.
inline constexpr char decoderRecord[] = "letter decoder";

/// What a run that goes on finds again.
struct RecordedDecoder {
    DecoderSettings settings; ///< weights as entered, not yet scaled
    QString referencesPath;   ///< a name alone is that of a file of the program
};

[[nodiscard]] QByteArray encodedDecoder(const RecordedDecoder& recorded);
/// Nothing when the content is damaged, or has numbers that the dialog doesn't give. What is not
/// recorded, the letter slots and the interval of the timer, is as in `start`.
[[nodiscard]] std::optional<RecordedDecoder> decodedDecoder(const QByteArray& content,
                                                            const DecoderSettings& start);
