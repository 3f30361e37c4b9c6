#include <sstream>

#include <gtest/gtest.h>

#include "app/terminal/output.h"

namespace trackedcam::app {
namespace {

std::string Escaped(const std::string& text) {
  std::ostringstream stream;
  {
    const EscapedOutput escaped(stream);
    stream << text;
  }
  return stream.str();
}

TEST(EscapedOutputTest, LetsTextPass) {
  for (const char* text : {"", "a\n\tb\f", "撮影é ∀ 𝄞", "C:\\new\\take", "{\"a\": 1}"}) {
    EXPECT_EQ(Escaped(text), text);
  }
}

TEST(EscapedOutputTest, ShowsWhatCommandsATerminal) {
  EXPECT_EQ(Escaped("a\x1B[2Jb"), "a\\u001b[2Jb");
  EXPECT_EQ(Escaped("log\rSuccess"), "log\\u000dSuccess");
  EXPECT_EQ(Escaped(std::string("\0\b\x7F", 3)), "\\u0000\\u0008\\u007f");
  EXPECT_EQ(Escaped("\xC2\x9B"
                    "31m"),
            "\\u009b31m");
  EXPECT_EQ(Escaped("a\u202Egpj.exe"), "a\\u202egpj.exe");
  EXPECT_EQ(Escaped("\u200E\u2067\u2028\u061C"), "\\u200e\\u2067\\u2028\\u061c");
}

TEST(EscapedOutputTest, ShowsBytesThatAreNotText) {
  EXPECT_EQ(Escaped("\xFF\xC0\x80."), "\\xff\\xc0\\x80.");
  EXPECT_EQ(Escaped("cut \xE6\x92"), "cut \\xe6\\x92");
}

TEST(EscapedOutputTest, TakesTextByteByByte) {
  std::ostringstream stream;
  const EscapedOutput escaped(stream);
  for (const char character : std::string("é撮𝄞\u202E\x1B")) {
    stream.put(character);
  }
  EXPECT_EQ(stream.str(), "é撮𝄞\\u202e\\u001b");
}

TEST(EscapedOutputTest, LeavesTheStreamAsItWas) {
  std::ostringstream stream;
  std::streambuf* const before = stream.rdbuf();
  {
    const EscapedOutput escaped(stream);
    EXPECT_EQ(PlainOutput(stream), before);
    stream.setstate(std::ios_base::badbit);
  }
  EXPECT_TRUE(stream.bad()) << "a failure is not forgotten";
  stream.clear();
  EXPECT_EQ(PlainOutput(stream), before);
  stream << "\x1B";
  EXPECT_EQ(stream.str(), "\x1B");
}

}  // namespace
}  // namespace trackedcam::app
