#include "core/number_text.h"

#include <array>
#include <charconv>

namespace trackedcam {

std::string ToText(double number) {
  // The longest text: a sign, 309 digits, the point and six decimals.
  std::array<char, 320> buffer = {};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, 6);
  return std::string(buffer.data(), result.ptr);
}

std::string ToText(int number) {
  return std::to_string(number);
}

}  // namespace trackedcam
