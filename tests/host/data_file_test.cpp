#include "host/input/data_file.h"

#include <gmock/gmock.h>

#include "host/input/inputs.h"
#include "host/input/shoot_data.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> PathsIn(const std::string& content) {
  std::vector<std::string> paths;
  for (const DataRow& row : ReadRows(content)) {
    paths.push_back(row.photograph);
  }
  return paths;
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

TEST(DataFile, CountsLinesFromOne) {
  const std::vector<DataRow> rows = ReadRows("Time,Image\n1,a.jpg\nTest\n2,b.jpg\n");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].line, 2U);
  EXPECT_EQ(rows[1].line, 4U);
  EXPECT_EQ(rows[1].text, "2,b.jpg");
}

TEST(DataFile, TakesAnotherPhotographInARow) {
  const auto replaced = [](const std::string& row) {
    return WithPhotograph(ReadRows(row).front(), "/x.jpg");
  };
  EXPECT_EQ(replaced("1,a.jpg,2,3"), "1,/x.jpg,2,3");
  EXPECT_EQ(replaced("1,a.jpg"), "1,/x.jpg");
  EXPECT_EQ(replaced("1,,2"), "1,/x.jpg,2");
  EXPECT_EQ(replaced("1"), "1");
}

class DataFileOnDisk : public testing::Test {
 protected:
  std::string ErrorOf(const std::string& name) {
    try {
      ReadShootData(folder.Path() / name, {});
    } catch (const InputError& error) {
      return error.what();
    }
    return "no error";
  }

  test::TemporaryFolder folder;
};

TEST_F(DataFileOnDisk, NeedsARow) {
  test::WriteFile(folder.File("data.csv"), "Time,Image\n");
  EXPECT_THAT(ErrorOf("data.csv"), HasSubstr("data.csv has no rows"));
}

TEST_F(DataFileOnDisk, HasAMillionRowsAtMost) {
  test::WriteFile(folder.File("data.csv"), std::string(1000001, '\n'));
  EXPECT_THAT(ErrorOf("data.csv"), HasSubstr("has more than 1000000 rows"));
}

TEST_F(DataFileOnDisk, IsNoSpreadsheet) {
  for (const char* begin : {"PK\x03\x04", "\xD0\xCF\x11\xE0"}) {
    test::WriteFile(folder.File("data.xlsx"), std::string(begin) + "sheet1\n1,2\n");
    EXPECT_THAT(ErrorOf("data.xlsx"), HasSubstr("data.xlsx is a spreadsheet, not text"));
  }
}

TEST_F(DataFileOnDisk, IsReadWhole) {
  test::WriteFile(folder.File("data.csv"), "Time\nT1,a.jpg\n");
  EXPECT_EQ(ReadDataContent(folder.Path() / "data.csv"), "Time\nT1,a.jpg\n");
}

TEST_F(DataFileOnDisk, MustBeAFile) {
  EXPECT_THAT(ErrorOf(""), HasSubstr("is not a regular file"));
  EXPECT_THAT(ErrorOf("missing.csv"), HasSubstr("tracker data file not found"));
}

}  // namespace
}  // namespace trackedcam::host
