#include "host/text/number_text.h"

#include <array>
#include <charconv>
#include <system_error>

namespace trackedcam::host {
namespace {

template <class Number>
std::optional<Number> Parse(std::string_view text) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) {
    return std::nullopt;
  }
  return number;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  return Parse<double>(text);
}

std::optional<int> ParseInteger(std::string_view text) {
  return Parse<int>(text);
}

std::string Fixed(double number, int decimals) {
  // The longest text: a sign, 309 digits, the point and the decimals.
  std::array<char, 400> buffer = {};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, decimals);
  return {buffer.data(), result.ptr};
}

std::string Shortest(double number) {
  std::array<char, 32> buffer = {};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), result.ptr};
}

}  // namespace trackedcam::host
