// Numbers of the data file: read like strtod of the C library, to the last bit.

#include <cmath>

#include "core/number_text.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  // A C string ends at its first zero.
  const std::string text(fuzz::TextOf(data, size).substr(0, fuzz::TextOf(data, size).find('\0')));
  const double expected = std::strtod(text.c_str(), nullptr);
  const double number = ParseLeadingNumber(text);
  fuzz::Require(std::isnan(expected)
                    ? std::isnan(number) && std::signbit(number) == std::signbit(expected)
                    : std::memcmp(&expected, &number, sizeof number) == 0,
                "a number differs from strtod in \"" + text + '"');
  // A written number reads back, to six decimals.
  if (std::isfinite(number)) {
    const double again = ParseLeadingNumber(ToSixDecimals(number));
    fuzz::Require(std::abs(again - number) <= 1e-6, "a number that was written and read back");
  }
  return 0;
}
