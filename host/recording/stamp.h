// Times of a recording, exact to the nanosecond: a double has too few digits for those since 1970.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace trackedcam::host {

enum class TimeUnit { kSeconds, kMilliseconds, kMicroseconds, kNanoseconds };

/// "s", "ms", "us" or "ns"; nothing for another name.
std::optional<TimeUnit> ParseTimeUnit(std::string_view name);

/// Times lie within 140 years of 0, so that the nanoseconds between any two fit as well.
constexpr std::int64_t kMostNanoseconds = 4'500'000'000'000'000'000;

/// The decimal number as whole nanoseconds, rounded; with a point and an exponent or without.
/// Nothing if it is not such a number or lies beyond kMostNanoseconds.
std::optional<std::int64_t> ParseNanoseconds(std::string_view text, TimeUnit unit);

constexpr double Seconds(std::int64_t nanoseconds) {
  return static_cast<double>(nanoseconds) / 1e9;
}

}  // namespace trackedcam::host
