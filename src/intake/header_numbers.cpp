// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/header_numbers.h"

#include "base/text_reading.h"

#include <algorithm>
#include <limits>

namespace {

TokenStream numberStream(std::string_view text) {
    // No number in a header is longer; a hostile value can be a megabyte of digits.
    constexpr size_t longestNumber = 64;
    const size_t start = std::min(text.find_first_not_of(" \t\r\n\v\f"), text.size());
    text = text.substr(start, longestNumber);
    return TokenStream(QString::fromLatin1(text.data(), qsizetype(text.size())));
}

} // namespace

float limitedFloat(double value) {
    constexpr double limit = std::numeric_limits<float>::max();
    return float(std::clamp(value, -limit, limit));
}

double leadingNumber(std::string_view text) {
    return numberStream(text).real();
}

float leadingFloat(std::string_view text) {
    return limitedFloat(leadingNumber(text));
}

int leadingInteger(std::string_view text) {
    return numberStream(text).integer();
}

std::string_view trimmedHeaderText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

std::vector<std::string_view> backslashFields(std::string_view text) {
    std::vector<std::string_view> fields;
    for (;;) {
        const size_t end = text.find('\\');
        fields.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        text.remove_prefix(end + 1);
    }
}
