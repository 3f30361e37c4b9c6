#include <gtest/gtest.h>

#include "report/html.h"

namespace trackedcam::report {
namespace {

namespace fs = std::filesystem;

TEST(EscapeHtml, LeavesNothingThatIsMarkup) {
  EXPECT_EQ(EscapeHtml("<script>alert('1') & \"2\"</script>"),
            "&lt;script&gt;alert(&#39;1&#39;) &amp; &quot;2&quot;&lt;/script&gt;");
  EXPECT_EQ(EscapeHtml("&lt;"), "&amp;lt;");
}

TEST(EscapeHtml, KeepsLettersOfAllLanguages) {
  EXPECT_EQ(EscapeHtml("über\n\t図.jpg"), "über\n\t図.jpg");
}

TEST(EscapeHtml, ReplacesControlCharacters) {
  EXPECT_EQ(EscapeHtml(std::string("a\0b\x1B\x7F", 5)), "a\uFFFDb\uFFFD\uFFFD");
}

TEST(EscapeJson, CannotEndTheScriptElement) {
  EXPECT_EQ(EscapeJson(R"({"a": "</script><!--"})"), R"({"a": "\u003c/script>\u003c!--"})");
}

TEST(Base64, EncodesTheVectorsOfRfc4648) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foo"), "Zm9v");
  EXPECT_EQ(Base64("foob"), "Zm9vYg==");
  EXPECT_EQ(Base64("fooba"), "Zm9vYmE=");
  EXPECT_EQ(Base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(Base64("\xFF\xFE\xFD"), "//79");
}

TEST(BytesOfHex, ReadsTwoDigitsForEachByte) {
  EXPECT_EQ(BytesOfHex("00417fFF"), std::string("\0A\x7F\xFF", 4));
}

TEST(FileLink, IsRelativeToThePage) {
  const fs::path page = fs::current_path() / "shoot" / "logs";
  EXPECT_EQ(FileLink(page / "a.jpg", page), "./a.jpg");
  EXPECT_EQ(FileLink(fs::current_path() / "photos" / "a.jpg", page), "./../../photos/a.jpg");
  EXPECT_EQ(FileLink("a.jpg", ""), "./a.jpg");
}

TEST(FileLink, IsNeverAnotherKindOfAddress) {
  const fs::path page = fs::current_path();
  EXPECT_EQ(FileLink("javascript:alert(1)", page), "./javascript%3Aalert%281%29");
  EXPECT_EQ(FileLink("a b\"#?%<.jpg", page), "./a%20b%22%23%3F%25%3C.jpg");
  EXPECT_EQ(FileLink(fs::u8path("ü.jpg"), page), "./%C3%BC.jpg");
}

TEST(ImageType, KnowsWhatMayBeEmbedded) {
  EXPECT_EQ(ImageType("\xFF\xD8\xFF\xE0 and so on"), "image/jpeg");
  EXPECT_EQ(ImageType("\x89PNG\r\n"), "image/png");
  EXPECT_EQ(ImageType("<svg onload=''>"), "");
  EXPECT_EQ(ImageType(""), "");
}

}  // namespace
}  // namespace trackedcam::report
