#include "host/recording/stamp.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string>
#include <system_error>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

int DecimalsOf(TimeUnit unit) {
  switch (unit) {
    case TimeUnit::kSeconds:
      return 9;
    case TimeUnit::kMilliseconds:
      return 6;
    case TimeUnit::kMicroseconds:
      return 3;
    case TimeUnit::kNanoseconds:
      break;
  }
  return 0;
}

// 0.<digits> * 10^point
struct Decimal {
  std::string digits;  // the first is not 0
  int point = 0;
};

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

std::optional<Decimal> ParseDecimal(std::string_view text) {
  Decimal decimal;
  bool isAfterPoint = false;
  std::size_t i = 0;
  for (; i < text.size() && (IsDigit(text[i]) || (text[i] == '.' && !isAfterPoint)); ++i) {
    if (text[i] == '.') {
      isAfterPoint = true;
      continue;
    }
    const bool isLeadingZero = decimal.digits.empty() && text[i] == '0';
    decimal.point += (isAfterPoint ? 0 : 1) - (isLeadingZero ? 1 : 0);
    if (!isLeadingZero) {
      decimal.digits += text[i];
    }
  }
  return i == text.size() ? std::optional<Decimal>(decimal) : std::nullopt;
}

// The whole part, rounded half up.
std::optional<std::int64_t> Rounded(const Decimal& decimal) {
  constexpr int kMostDigits = 19;
  if (decimal.digits.empty() || decimal.point < 0) {
    return 0;
  }
  if (decimal.point > kMostDigits) {
    return std::nullopt;
  }
  const auto whole = static_cast<std::size_t>(decimal.point);
  std::string digits = decimal.digits.substr(0, whole);
  digits.resize(whole, '0');
  std::int64_t number = 0;
  if (whole > 0 &&
      std::from_chars(digits.data(), digits.data() + whole, number).ec != std::errc()) {
    return std::nullopt;
  }
  const bool isRoundedUp = decimal.digits.size() > whole && decimal.digits[whole] >= '5';
  number = std::min(number, kMostNanoseconds + 1) + (isRoundedUp ? 1 : 0);
  return number > kMostNanoseconds ? std::nullopt : std::optional<std::int64_t>(number);
}

}  // namespace

std::optional<TimeUnit> ParseTimeUnit(std::string_view name) {
  if (name == "s") {
    return TimeUnit::kSeconds;
  }
  if (name == "ms") {
    return TimeUnit::kMilliseconds;
  }
  if (name == "us") {
    return TimeUnit::kMicroseconds;
  }
  return name == "ns" ? std::optional<TimeUnit>(TimeUnit::kNanoseconds) : std::nullopt;
}

std::optional<std::int64_t> ParseNanoseconds(std::string_view text, TimeUnit unit) {
  constexpr int kMostExponent = 1000;
  const bool isNegative = !text.empty() && text.front() == '-';
  const bool hasSign = isNegative || (!text.empty() && text.front() == '+');
  text.remove_prefix(hasSign ? 1 : 0);
  if (text.empty() || !ParseNumber(text) || !(IsDigit(text.front()) || text.front() == '.')) {
    return std::nullopt;
  }
  const std::size_t exponentSign = std::min(text.find_first_of("eE"), text.size());
  std::optional<Decimal> decimal = ParseDecimal(text.substr(0, exponentSign));
  if (decimal && exponentSign < text.size()) {
    std::string_view exponent = text.substr(exponentSign + 1);
    exponent.remove_prefix(exponent.front() == '+' ? 1 : 0);
    const std::optional<int> power = ParseInteger(exponent);
    if (!power || *power < -kMostExponent || *power > kMostExponent) {
      return std::nullopt;
    }
    decimal->point += *power;
  }
  if (!decimal) {
    return std::nullopt;
  }
  decimal->point += DecimalsOf(unit);
  const std::optional<std::int64_t> nanoseconds = Rounded(*decimal);
  return nanoseconds && isNegative ? -*nanoseconds : nanoseconds;
}

}  // namespace trackedcam::host
