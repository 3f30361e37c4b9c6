#include <gtest/gtest.h>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

TEST(Utf8, HoldsEveryCharacter) {
  for (const char* text : {"", "a", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                           "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF",
                           "na\xC3\xAFve \xE5\x86\x99\xE7\x9C\x9F"}) {
    EXPECT_TRUE(IsUtf8(text)) << text;
  }
}

TEST(Utf8, HoldsNothingElse) {
  for (const char* text :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2z", "\xE0\x9F\xBF", "\xE4\xB8",
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "\xFF", "m\xFCller", "\xC2\x80\x80"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
}

}  // namespace
}  // namespace trackedcam::host
