// Numbers as text, the same whatever locale the host has set and on every system.

#pragma once

#include <string>
#include <string_view>

namespace trackedcam {

/// What printf's "%f" gives in the C locale, as the run log writes numbers. A float is widened.
/// What is no number is "nan": its sign depends on the runtime.
std::string ToSixDecimals(double number);

/// A whole number is written as std::to_string does; it must not come out as 16.000000.
std::string ToSixDecimals(int) = delete;

/// What atof of the GNU C library gives in the C locale: the longest beginning that is a number,
/// decimal, hexadecimal, infinite or none, and 0 where there is no such beginning. The characters
/// of "nan(...)" leave no trace in what is not a number.
double ParseLeadingNumber(std::string_view text);

}  // namespace trackedcam
