// Numbers as text, the same in every locale and on every system.

#pragma once

#include <string>
#include <string_view>

namespace trackedcam {

/// The text of printf's "%f" in the C locale, as the run log writes numbers. A float is widened.
/// A NaN is always "nan", because its sign depends on the runtime.
std::string ToSixDecimals(double number);

/// Use std::to_string for whole numbers: 16 must not become 16.000000.
std::string ToSixDecimals(int) = delete;

/// The value that atof of the GNU C library returns in the C locale: the longest prefix that is a
/// number (decimal, hexadecimal, "inf" or "nan"), or 0 without such a prefix. The characters in
/// "nan(...)" do not change the NaN.
double ParseLeadingNumber(std::string_view text);

}  // namespace trackedcam
