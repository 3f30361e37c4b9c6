#include "host/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
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

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  return Parse<double>(text);
}

std::optional<int> ParseInteger(std::string_view text) {
  return Parse<int>(text);
}

std::string Fixed(double number, int decimals) {
  // The longest text has a sign, 309 digits, a point and the decimals.
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

// The second byte shows overlong forms, surrogates and values beyond U+10FFFF.
std::size_t CharacterLength(std::string_view text) {
  const unsigned char lead = ByteAt(text, 0);
  const unsigned char second = ByteAt(text, 1);
  const auto follows = [&](std::size_t index) { return (ByteAt(text, index) & 0xC0u) == 0x80; };
  if (lead < 0x80) {
    return text.empty() ? 0 : 1;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return follows(1) ? 2 : 0;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool isValid = (lead != 0xE0 || second >= 0xA0) && (lead != 0xED || second < 0xA0);
    return isValid && follows(1) && follows(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool isValid = (lead != 0xF0 || second >= 0x90) && (lead != 0xF4 || second < 0x90);
    return isValid && follows(1) && follows(2) && follows(3) ? 4 : 0;
  }
  return 0;
}

bool HasControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
  });
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace trackedcam::host
