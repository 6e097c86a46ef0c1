// What the two protocols that arrive during a run have in common: reading values, adding up times.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "base/text_reading.h"
#include "run/protocol/stimulation_protocol.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

/// What reading the header of such a protocol came to.
struct HeaderParsing {
    bool good = false;
    QString message;      ///< what the operator is told when it is not
    qsizetype length = 0; ///< characters of the text that are header
};

/// What one line did.
struct LineEffect {
    bool intervalsChanged = false; ///< and with them, the design
    QString message;               ///< what the operator is told; empty: nothing
};

/// What one call of an update did.
struct ProtocolUpdate {
    bool lineTaken = false;
    bool intervalsChanged = false;
};

/// Tells the operator of lines, in boxes that hold up neither the run nor its time-outs. Of a
/// broken file the first ones say enough; more would cover the screen.
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

/// The nearest time that an interval can hold.
[[nodiscard]] inline int asTime(double time) {
    constexpr double largest = std::numeric_limits<int>::max();
    return int(std::clamp(time, -largest, largest));
}

/// The next word as a time; decimals are cut. Nothing when it is no number or too large a one.
[[nodiscard]] inline std::optional<int> takeTime(TokenStream& stream) {
    const double time = stream.real();
    if (stream.failed() || std::abs(time) > double(std::numeric_limits<int>::max()))
        return std::nullopt;
    return int(time);
}

/// A colour with its channels held within 0 and 255.
[[nodiscard]] inline RgbColor validColor(int red, int green, int blue) {
    return {std::clamp(red, 0, 255), std::clamp(green, 0, 255), std::clamp(blue, 0, 255)};
}
