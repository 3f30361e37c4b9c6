#include "report/result_values.h"

#include <array>
#include <charconv>
#include <cmath>

#include <nlohmann/json.hpp>

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

}  // namespace

std::string Fixed(const std::optional<double>& number, int decimals) {
  constexpr const char* kDash = "\xE2\x80\x93";
  constexpr const char* kMinus = "\xE2\x88\x92";
  if (!number || !std::isfinite(*number)) {
    return kDash;
  }
  // The longest text: 309 digits, the point and the decimals.
  std::array<char, 400> buffer = {};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(*number),
                                 std::chars_format::fixed, decimals);
  const std::string digits(buffer.data(), end.ptr);
  const bool isZero = digits.find_first_not_of("0.") == std::string::npos;
  return *number < 0 && !isZero ? kMinus + digits : digits;
}

const Json& ValueAt(const Json& json, const std::string& path) {
  static const Json kNothing;
  const Json::json_pointer pointer(path);
  return json.contains(pointer) ? json.at(pointer) : kNothing;
}

std::optional<double> NumberAt(const Json& json, const std::string& path) {
  const Json& value = ValueAt(json, path);
  return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

std::string At(const std::string& path, std::size_t index) {
  return path + '/' + std::to_string(index);
}

std::optional<double> Times(const std::optional<double>& number,
                            const std::optional<double>& factor) {
  return number && factor ? std::optional(*number * *factor) : std::nullopt;
}

std::string TextAt(const Json& json, const std::string& path) {
  const Json& value = ValueAt(json, path);
  return value.is_string() ? value.get<std::string>() : std::string();
}

std::string ShortName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace trackedcam::report
