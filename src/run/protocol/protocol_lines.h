// Common parts of the two protocols that arrive during a run: contrasts, results, values of lines.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "base/text_reading.h"
#include "run/protocol/stimulation_protocol.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

/// Contrasts that a protocol asks for or defines.
struct ProtocolContrasts {
    enum class Source {
        None,
        ContrastFile, ///< the one in the settings
        Generated,    ///< automatic ones, of `level`
        Table,
    };
    struct Contrast {
        QString name;
        std::vector<int> weights; ///< one for each condition of the protocol
        int selectionState = 1;   ///< 0 off, 1 positive, 2 negative, 3 both
        RgbColor color;
    };

    Source source = Source::None;
    int level = 0;
    std::vector<Contrast> table;
};

/// Result of parsing the header of such a protocol.
struct HeaderParsing {
    bool good = false;
    QString message;      ///< for the operator when it is not good
    qsizetype length = 0; ///< of the header, in characters of the text
};

/// Effect of one line.
struct LineEffect {
    bool intervalsChanged = false; ///< so the design is outdated
    QString message;               ///< for the operator; empty for none
};

/// Effect of one update.
struct ProtocolUpdate {
    bool lineTaken = false;
    bool intervalsChanged = false;
    QString line; ///< the one that was taken; empty when it was too long to be read
};

/// Shows messages about lines in modeless boxes, which delay neither the run nor its time-outs.
/// Only the first few, since a damaged file would cover the screen with them.
class LineMessages {
public:
    void show(const QString& message) {
        constexpr int most = 5;
        if (!message.isEmpty() && ++shown_ <= most)
            showModelessWarning(message);
    }

private:
    int shown_ = 0;
};

/// A time clamped to what an interval can hold.
[[nodiscard]] inline int clampedTime(double time) {
    constexpr double largest = std::numeric_limits<int>::max();
    return int(std::clamp(time, -largest, largest));
}

/// The next word as a time, truncated to an integer. Nothing when it is not a number or too large.
[[nodiscard]] inline std::optional<int> readTime(TokenStream& stream) {
    const double time = stream.real();
    if (stream.failed() || std::abs(time) > double(std::numeric_limits<int>::max()))
        return std::nullopt;
    return int(time);
}

/// A colour with its channels clamped to 0 to 255.
[[nodiscard]] inline RgbColor validColor(int red, int green, int blue) {
    return {std::clamp(red, 0, 255), std::clamp(green, 0, 255), std::clamp(blue, 0, 255)};
}
