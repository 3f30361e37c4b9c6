#include "core/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace trackedcam {
namespace {

// Enough digits to round any double correctly. Of the digits after them it matters only whether one
// is not 0.
constexpr std::size_t kDigitsKept = 800;

// An exponent beyond kReadableExponent makes a number infinite or 0, however many digits it has.
// kExponentLimit keeps the sum of exponents from overflowing.
constexpr long long kExponentLimit = 1'000'000'000'000'000;
constexpr long long kReadableExponent = 10'000;

// The value is 0.digits * base^exponent, with base 10, or 2 for hexadecimal digits. It is 0 without
// digits.
struct Scientific {
  std::string digits;  // without leading zeros
  long long exponent = 0;
};

bool IsDecimal(char character) {
  return character >= '0' && character <= '9';
}

bool IsHexadecimal(char character) {
  return IsDecimal(character) || (character >= 'a' && character <= 'f') ||
         (character >= 'A' && character <= 'F');
}

// Ignores the case of the text. The word must be in lower case.
bool StartsWith(std::string_view text, std::string_view word) {
  const auto small = [](char letter) {
    return static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
  };
  return text.size() >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin(),
                    [&](char wanted, char letter) { return wanted == small(letter); });
}

bool TakeSign(std::string_view& text) {
  const bool isNegative = StartsWith(text, "-");
  text.remove_prefix(isNegative || StartsWith(text, "+") ? 1 : 0);
  return isNegative;
}

void TakeDigits(std::string_view& text, bool isHex, Scientific& number) {
  const int weight = isHex ? 4 : 1;
  bool isBehindPoint = false;
  for (; !text.empty(); text.remove_prefix(1)) {
    const char character = text.front();
    if (character == '.' && !isBehindPoint) {
      isBehindPoint = true;
      continue;
    }
    if (!(isHex ? IsHexadecimal(character) : IsDecimal(character))) {
      return;
    }
    const bool isLeadingZero = character == '0' && number.digits.empty();
    if (isLeadingZero && isBehindPoint) {
      number.exponent -= weight;
    } else if (!isLeadingZero && !isBehindPoint) {
      number.exponent += weight;
    }
    if (!isLeadingZero && number.digits.size() < kDigitsKept) {
      number.digits += character;
    } else if (character != '0') {
      number.digits.back() = '1';
    }
  }
}

// An exponent mark without digits after it does not belong to the number.
void TakeExponent(std::string_view text, bool isHex, Scientific& number) {
  if (!StartsWith(text, isHex ? "p" : "e")) {
    return;
  }
  text.remove_prefix(1);
  const bool isNegative = TakeSign(text);
  long long exponent = 0;
  for (; !text.empty() && IsDecimal(text.front()); text.remove_prefix(1)) {
    exponent = std::min(10 * exponent + (text.front() - '0'), kExponentLimit);
  }
  number.exponent += isNegative ? -exponent : exponent;
}

double ValueOf(const Scientific& number, bool isHex) {
  if (number.digits.empty() || number.exponent < -kReadableExponent) {
    return 0;
  }
  if (number.exponent > kReadableExponent) {
    return HUGE_VAL;
  }
  const std::string text =
      "0." + number.digits + (isHex ? "p" : "e") + std::to_string(number.exponent);
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value,
                                      isHex ? std::chars_format::hex : std::chars_format::general);
  if (result.ec == std::errc::result_out_of_range) {
    return number.exponent > 0 ? HUGE_VAL : 0;
  }
  return value;
}

}  // namespace

std::string ToSixDecimals(double number) {
  // The longest text has a sign, 309 digits, the point and six decimals.
  std::array<char, 320> buffer = {};
  number = std::isnan(number) ? std::copysign(number, 1.0) : number;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, 6);
  return std::string(buffer.data(), result.ptr);
}

double ParseLeadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool isNegative = TakeSign(text);
  const auto withSign = [&](double value) { return std::copysign(value, isNegative ? -1.0 : 1.0); };
  if (StartsWith(text, "inf")) {
    return withSign(HUGE_VAL);
  }
  if (StartsWith(text, "nan")) {
    return withSign(std::numeric_limits<double>::quiet_NaN());
  }
  const std::string_view number = StartsWith(text, ".") ? text.substr(1) : text;
  if (number.empty() || !IsDecimal(number.front())) {
    return 0;
  }
  // "0x" without digits after it is the number 0.
  const bool isHex = StartsWith(text, "0x");
  text.remove_prefix(isHex ? 2 : 0);
  Scientific scientific;
  TakeDigits(text, isHex, scientific);
  TakeExponent(text, isHex, scientific);
  return withSign(ValueOf(scientific, isHex));
}

}  // namespace trackedcam
