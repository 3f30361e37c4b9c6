#include "app/commands/data_file.h"

#include <sstream>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include "support/stage_test.h"

namespace trackedcam::app {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> PathsIn(const std::string& content) {
  std::istringstream data(content);
  return ReadPhotographPaths(data);
}

TEST(DataFile, HasAPhotographInTheSecondFieldOfEachRow) {
  EXPECT_THAT(PathsIn("Time,Image,x\n1,photos/a.jpg,0\n2,b c.jpg,0\n"),
              ElementsAre("photos/a.jpg", "b c.jpg"));
}

TEST(DataFile, MayHaveWindowsLineEnds) {
  EXPECT_THAT(PathsIn("Time,Image\r\n1,a.jpg\r\n2,b.jpg\r\n"), ElementsAre("a.jpg", "b.jpg"));
}

TEST(DataFile, KeepsACarriageReturnThatEndsNoLine) {
  EXPECT_THAT(PathsIn("1,a\rb.jpg\n2,c.jpg\r"), ElementsAre("a\rb.jpg", "c.jpg\r"));
}

TEST(DataFile, MayBeginWithAByteOrderMark) {
  for (const char* mark : {"\xFF\xFE", "\xEF\xBB\xBF", "\x84\x31\x95\x33"}) {
    EXPECT_THAT(PathsIn(std::string(mark) + "Time,Image\n1,a.jpg\n"), ElementsAre("a.jpg"));
  }
}

TEST(DataFile, TakesNothingElseForAByteOrderMark) {
  EXPECT_THAT(PathsIn("-Time,Image\n"), ElementsAre("Image"));
  EXPECT_THAT(PathsIn("-----Time,Image\n"), ElementsAre("Image"));
  EXPECT_THAT(PathsIn("1,a.jpg\n--Time,b.jpg\n"), ElementsAre("a.jpg", "b.jpg"));
}

TEST(DataFile, SkipsEveryLineThatBeginsWithT) {
  EXPECT_THAT(PathsIn("Time,Image\n1,a.jpg\nTest,x\nT\n2,b.jpg"), ElementsAre("a.jpg", "b.jpg"));
}

TEST(DataFile, CountsABlankLineAsARow) {
  EXPECT_THAT(PathsIn("Time,Image\n1,a.jpg\n\n"), ElementsAre("a.jpg", ""));
}

TEST(DataFile, MayLackThePath) {
  EXPECT_THAT(PathsIn("1\n2,\n"), ElementsAre("", ""));
}

TEST(DataFile, NeedsARow) {
  const test::TemporaryFolder folder;
  test::WriteFile(folder.File("data.csv"), "Time,Image\n");
  try {
    ReadPhotographPaths(folder.Path() / "data.csv");
    FAIL() << "read a file without rows";
  } catch (const CLI::ValidationError& error) {
    EXPECT_THAT(error.what(), HasSubstr("data.csv has no row"));
  }
}

TEST(DataFile, MustBeAFile) {
  const test::TemporaryFolder folder;
  EXPECT_THROW(ReadPhotographPaths(folder.Path()), CLI::ValidationError);
  EXPECT_THROW(ReadPhotographPaths(folder.Path() / "missing.csv"), CLI::ValidationError);
}

}  // namespace
}  // namespace trackedcam::app
