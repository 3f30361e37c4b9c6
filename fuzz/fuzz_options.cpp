// Values of options: refused, or accepted and within their limits.

#include <cmath>

#include <CLI/CLI.hpp>

#include "app/options/option_values.h"
#include "fuzz/fuzz.h"

namespace {

template <class Value, class Check>
void Try(Value (*parse)(const std::string&, const std::string&), const std::string& text,
         Check check) {
  try {
    trackedcam::fuzz::Require(check(parse("--option", text)), "a value beyond its limits: " + text);
  } catch (const CLI::ValidationError&) {
  }
}

bool IsLength(double metres) {
  return std::isfinite(metres) && metres > 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam::app;
  const std::string text(trackedcam::fuzz::TextOf(data, size));
  const auto any = [](const auto& /*value*/) { return true; };
  const auto finite = [](const auto& values) {
    for (const double value : values) {
      if (!std::isfinite(value)) {
        return false;
      }
    }
    return true;
  };
  Try(ParseSensor, text, [](const auto& mm) { return IsLength(mm[0]) && IsLength(mm[1]); });
  Try(ParseImageSize, text, [](const auto& pixels) { return pixels[0] > 0 && pixels[1] > 0; });
  Try(ParseBoard, text, [](const auto& board) {
    return board[0] >= 3 && board[0] <= 100 && board[1] >= 3 && board[1] <= 100;
  });
  Try(ParseTriple, text, finite);
  Try(ParseTranslation, text, finite);
  Try(ParseLens, text, finite);
  Try(ParseSquare, text, [](double metres) { return IsLength(metres) && metres < 1; });
  Try(ParseLength, text, IsLength);
  Try(ParsePaper, text, any);
  Try(ParseCount, text, [](int count) { return count >= 0; });
  Try(ParseEngine, text, any);
  Try(ParseEngines, text, any);
  Try(ParseParentAxesText, text, any);
  Try(ParseTrackerAxes, text, any);
  Try(ParseTrackerUnit, text, any);
  Try(ParseMountingAxes, text, any);
  return 0;
}
