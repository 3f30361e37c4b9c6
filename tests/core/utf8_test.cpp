#include "core/utf8.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace trackedcam {
namespace {

TEST(Utf8, GoesToWideTextAndBack) {
  const std::string text = "C:/Fotos/Größe/撮影/\xF0\x9F\x8E\xA5.jpg";
  EXPECT_EQ(WideFromUtf8(text), L"C:/Fotos/Größe/撮影/\U0001F3A5.jpg");
  EXPECT_EQ(Utf8FromWide(WideFromUtf8(text)), text);
  EXPECT_EQ(WideFromUtf8(""), L"");
}

TEST(Utf8, KeepsTheFirstAndLastCharacterOfEachLength) {
  for (const char* text :
       {"\x01", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(Utf8FromWide(WideFromUtf8(text)), text);
  }
}

TEST(Utf8, RefusesWhatIsNotUtf8) {
  const std::string broken[] = {
      "\x80",              // a continuation byte alone
      "caf\xE9",           // Latin-1
      "\xC3",              // cut short
      "\xE6\x92",          // cut short
      "\xE6\x92/",         // cut short by a character
      "\xC0\xAF",          // a longer form of "/"
      "\xE0\x80\xAF",      // a longer form of "/"
      "\xF0\x82\x82\xAC",  // a longer form of the euro sign
      "\xED\xA0\x80",      // half of a surrogate pair
      "\xF4\x90\x80\x80",  // above the last character
      "\xF8\x88\x80\x80\x80",
      "\xFF",
  };
  for (const std::string& text : broken) {
    try {
      WideFromUtf8(text);
      ADD_FAILURE() << "accepted " << testing::PrintToString(text);
    } catch (const std::range_error& error) {
      EXPECT_STREQ(error.what(), "bad conversion");
    }
  }
}

TEST(Utf8, RefusesInvalidWideText) {
  EXPECT_THROW(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0xD800))), std::range_error);
  EXPECT_THROW(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0xDFFF))), std::range_error);
}

}  // namespace
}  // namespace trackedcam
