#include "app/commands/toml_characters.h"

#include <gtest/gtest.h>

#include "host/text/text.h"

namespace trackedcam::app {
namespace {

TEST(TomlCharacters, OfTheFirstPlaneMoveToPlane15) {
  EXPECT_EQ(ToTomlCharacters("a\u00E9 \u0080\u07FF"), "a\U000F00E9 \U000F0080\U000F07FF");
  EXPECT_EQ(ToTomlCharacters("\u0800\u64AE\uFFFD"), "\U000F0800\U000F64AE\U000FFFFD");
  EXPECT_EQ(ToTomlCharacters("\U0001D11E"), "\U0001D11E");
  EXPECT_EQ(ToTomlCharacters(""), "");
}

TEST(TomlCharacters, ComeBack) {
  const std::string text = "x = '撮影é ∀ 𝄞 \u00FF\u0100\u0FFF\u1000'\r\n";
  EXPECT_TRUE(host::IsUtf8(ToTomlCharacters(text)));
  EXPECT_EQ(FromTomlCharacters(ToTomlCharacters(text)), text);
}

TEST(TomlCharacters, LeaveAMarkAndWhatIsNoText) {
  EXPECT_EQ(ToTomlCharacters("\uFEFFa\u00E9\xFF\u00E9"), "\uFEFFa\U000F00E9\xFF\u00E9");
  EXPECT_EQ(FromTomlCharacters("\U000F00E9\xFF"), "\u00E9\xFF");
}

}  // namespace
}  // namespace trackedcam::app
