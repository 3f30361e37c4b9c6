#include "core/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace trackedcam {

std::string ToText(double number) {
  // The longest text: a sign, 309 digits, the point and six decimals.
  std::array<char, 320> buffer = {};
  number = std::isnan(number) ? std::copysign(number, 1.0) : number;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, 6);
  return std::string(buffer.data(), result.ptr);
}

std::string ToText(int number) {
  return std::to_string(number);
}

double ParseNumber(std::string_view text) {
  // from_chars takes neither blanks nor a plus sign nor the mark of hexadecimal digits.
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool isNegative = !text.empty() && text.front() == '-';
  if (isNegative || (!text.empty() && text.front() == '+')) {
    text.remove_prefix(1);
  }
  const std::string_view mark = text.substr(0, 2);
  const bool isHex = mark == "0x" || mark == "0X";
  if (isHex) {
    text.remove_prefix(2);
  }
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number,
                                      isHex ? std::chars_format::hex : std::chars_format::general);
  const bool hasTwoSigns = !text.empty() && text.front() == '-';
  if (hasTwoSigns || result.ec == std::errc::invalid_argument) {
    return 0;
  }
  if (result.ec == std::errc::result_out_of_range) {
    const bool isTiny = text.front() == '0' || text.front() == '.' ||
                        std::find(text.data(), result.ptr, '-') != result.ptr;
    number = isTiny ? 0 : HUGE_VAL;
  }
  return isNegative ? -number : number;
}

}  // namespace trackedcam
