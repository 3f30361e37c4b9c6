#include "core/run_log.h"

#include <regex>
#include <stdexcept>

#include "core/utf8.h"
#include "support/log_lines.h"
#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

using RunLogTest = test::StageTest;

const std::string kLogName = R"(log_\d{4}-\d\d-\d\d-\d\d\.\d\d\.\d\d\.txt)";

std::string PathOfLogIn(const std::string& folder) {
  RunLog log;
  OpenRunLog(log, folder);
  return Utf8FromWide(log.path);
}

TEST_F(RunLogTest, HasTheTimeAfterTwoSlashesInItsPath) {
  EXPECT_TRUE(std::regex_match(PathOfLogIn("C:/runs"), std::regex("C:/runs//" + kLogName)));
  EXPECT_TRUE(std::regex_match(PathOfLogIn("C:/runs/"), std::regex("C:/runs///" + kLogName)));
  EXPECT_TRUE(std::regex_match(PathOfLogIn(""), std::regex("//" + kLogName)));
}

TEST_F(RunLogTest, IsCreatedWithItsFirstLine) {
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
  WriteRunLogLine(log, "first");
  EXPECT_EQ(LogLines(), std::vector<std::string>{"first"});
}

TEST_F(RunLogTest, WritesTimeTabMessageAndLineEndToFileAndConsole) {
  const std::string console = ConsoleOf([&] { WriteRunLogLine(log, "Start OrganizeRT."); });
  const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\tStart OrganizeRT\.\n)");
  EXPECT_TRUE(std::regex_match(console, line)) << console;
  EXPECT_EQ(test::ReadText(Utf8FromWide(log.path)), console);
}

TEST_F(RunLogTest, HasTheLineEndsOfTheSystemAndLeavesTabsAndUtf8) {
  WriteRunLogLine(log, "a\tb\nc 撮影");
  const std::string content = test::ReadFile(Utf8FromWide(log.path));
  EXPECT_EQ(content.substr(content.find('\t')),
            std::string("\ta\tb") + test::kLineEnd + "c 撮影" + test::kLineEnd);
}

TEST_F(RunLogTest, WithoutAFolderGoesToTheConsoleOnly) {
  RunLog lost;
  OpenRunLog(lost, folder.File("missing"));
  const std::string console = ConsoleOf([&] { WriteRunLogLine(lost, "still shown"); });
  EXPECT_NE(console.find("\tstill shown\n"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(RunLogTest, IsSharedByTwoCallsOfOneSecond) {
  RunLog other;
  do {
    OpenRunLog(log, folder.Path().u8string());
    OpenRunLog(other, folder.Path().u8string());
  } while (other.path != log.path);  // the clock moved on between the two
  WriteRunLogLine(log, "first call");
  WriteRunLogLine(other, "second call");
  EXPECT_EQ(test::ReadLogLines(test::OnlyLogIn(folder.Path().u8string())),
            (std::vector<std::string>{"first call", "second call"}));
}

TEST_F(RunLogTest, RefusesAFolderThatIsNotUtf8) {
  RunLog refused;
  EXPECT_THROW(OpenRunLog(refused, "caf\xE9"), std::range_error);
}

TEST_F(RunLogTest, KnowsTwoTimeTexts) {
  EXPECT_TRUE(
      std::regex_match(FormatLocalTime("now"), std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)")));
  EXPECT_TRUE(
      std::regex_match(FormatLocalTime("date"), std::regex(R"(\d{4}-\d\d-\d\d-\d\d\.\d\d\.\d\d)")));
  EXPECT_EQ(FormatLocalTime("hour"), "");
}

}  // namespace
}  // namespace trackedcam
