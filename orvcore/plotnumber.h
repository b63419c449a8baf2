// SPDX-License-Identifier: Apache-2.0
// Private: numbers as plots and their files write them, the same in every locale. Pure functions.
#pragma once
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace plot {

// As printf's "%.<decimals>f" and "%.<decimals>e" in the C locale.
inline std::string Text(double value, std::chars_format format, int decimals) {
    char buffer[400];
    auto const end = std::to_chars(buffer, buffer + sizeof buffer, value, format, decimals);
    return std::string(buffer, end.ptr);
}
inline std::string Fixed(double value, int decimals) {
    return Text(value, std::chars_format::fixed, decimals);
}
inline std::string Scientific(double value, int decimals) {
    return Text(value, std::chars_format::scientific, decimals);
}

// Cut towards zero; the nearest int for what lies outside, 0 for what is no number.
inline int CutToInt(double value) {
    if (std::isnan(value)) return 0;
    if (value >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    if (value <= std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

}  // namespace plot
