#include "simulator/decimals.h"

#include <array>
#include <charconv>
#include <system_error>

namespace trackedcam::simulator {
namespace {

template <typename... Format>
std::string Text(double number, Format... format) {
  std::array<char, 400> text = {};
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), number, format...);
  return error == std::errc() ? std::string(text.data(), end) : std::string();
}

}  // namespace

std::string ToShortestText(double number) {
  return Text(number);
}

std::string ToFixedText(double number, int decimals) {
  return Text(number, std::chars_format::fixed, decimals);
}

}  // namespace trackedcam::simulator
