#include "core/number_text.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "support/foreign_locale.h"

namespace trackedcam {
namespace {

std::string Printf(double number) {
  char text[400];
  std::snprintf(text, sizeof text, "%f", number);
  return text;
}

TEST(NumberText, IsWhatPrintfGives) {
  const double limits[] = {0.0,
                           -0.0,
                           1.5,
                           0.015F,
                           0.0000005,
                           1e22,
                           std::numeric_limits<double>::max(),
                           -std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::denorm_min(),
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity()};
  for (const double number : limits) {
    EXPECT_EQ(ToText(number), Printf(number));
  }
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ToText(std::copysign(nan, 1.0)), "nan");
  EXPECT_EQ(ToText(std::copysign(nan, -1.0)), "nan");
}

TEST(NumberText, IsWhatPrintfGivesForAnyBits) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (!std::isnan(number)) {
      ASSERT_EQ(ToText(number), Printf(number));
    }
    const double halfway = std::ldexp(static_cast<double>(bits >> 40), -7);
    ASSERT_EQ(ToText(halfway), Printf(halfway));
  }
}

TEST(NumberText, KeepsItsDigitsInAnyLocale) {
  const test::ForeignLocale locale;
  ASSERT_EQ(Printf(1234.5), "1234,500000") << "the locale is not in force";
  EXPECT_EQ(ToText(1234.5), "1234.500000");
  EXPECT_EQ(ToText(-1234567), "-1234567");
}

TEST(ParseNumber, ReadsWhatAtofReads) {
  for (const char* text : {"0.1",   " \t12.5", "12:30:05.123", "1e3x",      "-0",   "+7",  "",
                           "abc",   "inf",     "-Infinity",    "0x1.8p3",   "0X1F", "0x",  "-1e999",
                           "1e999", "1e-999",  "4e-320",       ".5",        "5.",   "1,5", "--5",
                           "0x-5",  "+-5",     "- 5",          "\v\f\r\n8", "1e",   "-"}) {
    EXPECT_EQ(ParseNumber(text), std::strtod(text, nullptr)) << text;
  }
  EXPECT_TRUE(std::isnan(ParseNumber("nan")));
}

TEST(ParseNumber, KeepsTheDecimalPointInAnyLocale) {
  const test::ForeignLocale locale;
  EXPECT_EQ(ParseNumber("0.25"), 0.25);
  EXPECT_EQ(ParseNumber("0,25"), 0.0);
}

}  // namespace
}  // namespace trackedcam
