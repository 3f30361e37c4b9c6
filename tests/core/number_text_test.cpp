#include "core/number_text.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/foreign_locale.h"
#include "support/platform.h"

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
    EXPECT_EQ(ToSixDecimals(number), Printf(number));
  }
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ToSixDecimals(std::copysign(nan, 1.0)), "nan");
  EXPECT_EQ(ToSixDecimals(std::copysign(nan, -1.0)), "nan");
}

TEST(NumberText, IsWhatPrintfGivesForAnyBits) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (!std::isnan(number)) {
      ASSERT_EQ(ToSixDecimals(number), Printf(number));
    }
    const double halfway = std::ldexp(static_cast<double>(bits >> 40), -7);
    ASSERT_EQ(ToSixDecimals(halfway), Printf(halfway));
  }
}

TEST(NumberText, KeepsItsDigitsInAnyLocale) {
  const test::ForeignLocale locale;
  ASSERT_EQ(Printf(1234.5), "1234,500000") << "the locale has no effect";
  EXPECT_EQ(ToSixDecimals(1234.5), "1234.500000");
}

std::uint64_t Bits(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

// The signs of zero and NaN count.
bool IsSame(double a, double b) {
  return std::isnan(a) || std::isnan(b)
             ? std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b)
             : Bits(a) == Bits(b);
}

// Texts that one reader can take for a number and another cannot.
class NastyTexts {
 public:
  explicit NastyTexts(unsigned seed) : random_(seed) {}

  std::string Next() {
    std::string text = OneOf({"", "", "", "", " ", "\t\n\v\f\r ", "\b", "T"}) +
                       OneOf({"", "", "", "-", "-", "+", "--", "+-", "- "});
    switch (Number(8)) {
      case 0:
        text += OneOf({"inf", "INFINITY", "infinit", "in", "nan", "NaN(12)", "nan(", "nan(a b)",
                       "0Xnan", "0xinf", "i", "n"});
        break;
      case 1:
        text += Halfway();
        break;
      case 2:
      case 3:
        text += OneOf({"0x", "0X", "0x0x", "00x"}) + Digits("0123456789abcdefABCDEF") +
                OneOf({"", ".", "..", ".0"}) + Digits("0123456789abcdefABCDEF") +
                Exponent({"p", "P", "e", "", "pp"});
        break;
      default:
        text += Digits("0123456789") + OneOf({"", ".", ".", ",", ".."}) + Digits("0123456789") +
                Exponent({"e", "E", "p", "", "ee"});
    }
    for (int i = Number(4); i == 3 && !text.empty(); i = Number(6)) {
      text.insert(static_cast<std::size_t>(Number(static_cast<int>(text.size()) + 1)), 1,
                  "0123456789.+-eExXpPinfa()_ \t"[Number(28)]);
    }
    return text;
  }

 private:
  int Number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

  std::string OneOf(const std::vector<std::string>& texts) {
    return texts[static_cast<std::size_t>(Number(static_cast<int>(texts.size())))];
  }

  std::string Digits(const std::string& alphabet) {
    const int kind = Number(40);
    const int count = kind == 0 ? Number(1200) : kind < 4 ? Number(60) : Number(6);
    std::string digits(kind % 5 == 1 ? static_cast<std::size_t>(Number(400)) : 0, '0');
    for (int i = 0; i < count; ++i) {
      digits += alphabet[static_cast<std::size_t>(Number(static_cast<int>(alphabet.size())))];
    }
    return digits;
  }

  std::string Exponent(const std::vector<std::string>& marks) {
    const int limits[] = {10, 330, 1100, 70000, 1000000000};
    std::string exponent = std::to_string(Number(limits[Number(5)]));
    exponent += Number(20) == 0 ? Digits("0123456789") : "";
    return OneOf(marks) + OneOf({"", "-", "+", "-", "--"}) + OneOf({exponent, exponent, ""});
  }

  // Halfway between two neighbouring doubles, or a digit away from it.
  std::string Halfway() {
    double number = 0;
    const std::uint64_t bits = (static_cast<std::uint64_t>(random_()) << 32) | random_();
    std::memcpy(&number, &bits, sizeof number);
    number = Number(3) == 0 ? std::ldexp(std::abs(number), -1030) : std::abs(number);
    const long double middle =
        (static_cast<long double>(number) + std::nextafter(number, HUGE_VAL)) / 2;
    char text[900];
    const int digits = OneOf({"x", "x", ""}).empty() ? Number(800) : 780;
    std::snprintf(text, sizeof text, "%.*Le", digits, middle);
    std::string halfway = text;
    if (Number(2) == 0 && halfway.find('e') != std::string::npos) {
      halfway.insert(halfway.find('e'), Digits("01"));
    }
    return halfway;
  }

  std::mt19937 random_;
};

TEST(ParseLeadingNumber, ReadsWhateverStrtodReads) {
  if (!test::kHasGnuStrtod) {
    GTEST_SKIP() << "This runtime's strtod reads some texts differently.";
  }
  constexpr unsigned kSeed = 20;
  NastyTexts texts(kSeed);
  for (int i = 0; i < 300000; ++i) {
    const std::string text = texts.Next();
    const double number = ParseLeadingNumber(text);
    const double expected = std::strtod(text.c_str(), nullptr);
    ASSERT_TRUE(IsSame(number, expected))
        << "seed " << kSeed << ": \"" << text << "\" is " << expected << ", not " << number;
  }
}

TEST(ParseLeadingNumber, ReadsWhatFuzzersFound) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kLeast = std::numeric_limits<double>::denorm_min();
  constexpr double kMost = std::numeric_limits<double>::max();
  const std::pair<const char*, double> cases[] = {{"020e400025", kInfinite},
                                                  {"-04e2400", -kInfinite},
                                                  {"0Xnan", 0.0},
                                                  {"-0x", -0.0},
                                                  {"-0xg", -0.0},
                                                  {"0x.8", 0.5},
                                                  {"-0x.p3", -0.0},
                                                  {"-.", 0.0},
                                                  {"-.e5", 0.0},
                                                  {"nan(7)", kNan},
                                                  {"-nan", -kNan},
                                                  {"-inf", -kInfinite},
                                                  {"0e999999999999999999999", 0.0},
                                                  {"1e-99999999999999999999", 0.0},
                                                  {"2.4703282292062327e-324", 0.0},
                                                  {"2.4703282292062328e-324", kLeast},
                                                  {"1e+", 1.0},
                                                  {"0x1p", 1.0},
                                                  {"0x1p-1074", kLeast},
                                                  {"0x1p-1075", 0.0},  // halfway: rounds to even
                                                  {"0x1.8p-1075", kLeast},  // above halfway
                                                  {"0x0.00000000000018p-1022", 2 * kLeast},
                                                  {"0x1.fffffffffffff8p1023", kInfinite},
                                                  {"1.7976931348623158e308", kMost},
                                                  {"1.7976931348623159e308", kInfinite}};
  for (const auto& [text, number] : cases) {
    EXPECT_TRUE(IsSame(ParseLeadingNumber(text), number))
        << text << " is not " << ParseLeadingNumber(text);
  }
  const std::string zeros(700000, '0');
  EXPECT_EQ(ParseLeadingNumber("0." + zeros + "1e700001"), 1.0);
  EXPECT_EQ(ParseLeadingNumber("1" + zeros + "e-700000"), 1.0);
  EXPECT_EQ(ParseLeadingNumber(std::string("1\0002", 3)), 1.0);
}

TEST(ParseLeadingNumber, ReadsWhatAtofReads) {
  for (const char* text : {"0.1",   " \t12.5", "12:30:05.123", "1e3x",      "-0",   "+7",  "",
                           "abc",   "inf",     "-Infinity",    "0x1.8p3",   "0X1F", "0x",  "-1e999",
                           "1e999", "1e-999",  "4e-320",       ".5",        "5.",   "1,5", "--5",
                           "0x-5",  "+-5",     "- 5",          "\v\f\r\n8", "1e",   "-"}) {
    EXPECT_EQ(ParseLeadingNumber(text), std::strtod(text, nullptr)) << text;
  }
  EXPECT_TRUE(std::isnan(ParseLeadingNumber("nan")));
}

TEST(ParseLeadingNumber, KeepsTheDecimalPointInAnyLocale) {
  const test::ForeignLocale locale;
  EXPECT_EQ(ParseLeadingNumber("0.25"), 0.25);
  EXPECT_EQ(ParseLeadingNumber("0,25"), 0.0);
}

}  // namespace
}  // namespace trackedcam
