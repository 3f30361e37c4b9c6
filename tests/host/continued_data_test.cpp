#include "host/input/continued_data.h"

#include <gmock/gmock.h>

#include "host/input/data_file.h"
#include "host/input/input_error.h"
#include "support/image_file.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kRecorderHeader = "Time,photograph,poses\n";

std::string RecordedRowOf(const std::string& photograph, const std::string& chartX = "1.5") {
  return "0," + photograph + ",0,0,0,1,0,0,0," + chartX + ",0,0,1,0,0,0\n";
}

class ContinuedDataTest : public testing::Test {
 protected:
  ContinuedDataTest() {
    inputs.data = folder.Path() / "a.csv";
    inputs.moreData = {folder.Path() / "b.csv"};
    inputs.workingFolder = folder.Path();
    test::WriteFile(folder.File("a.csv"),
                    kRecorderHeader + RecordedRowOf("1.jpg") + RecordedRowOf("2.jpg"));
  }

  std::string RefusalOf(const std::string& second) {
    test::WriteFile(folder.File("b.csv"), second);
    try {
      ContinuedContent(inputs);
    } catch (const InputError& error) {
      return error.what();
    }
    return "not refused";
  }

  test::TemporaryFolder folder;
  Inputs inputs;
};

TEST_F(ContinuedDataTest, CountsTheLinesOn) {
  test::WriteFile(folder.File("b.csv"), kRecorderHeader + RecordedRowOf("3.jpg"));
  const std::vector<DataRow> rows = ReadRows(ContinuedContent(inputs));
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[2].photograph, "3.jpg");
  EXPECT_EQ(rows[2].line, 5U);
}

TEST_F(ContinuedDataTest, HasOneHeaderWhateverItIs) {
  const std::string header = "seconds,file,x,y,z,w,x,y,z,x,y,z,w,x,y,z\n";
  test::WriteFile(folder.File("a.csv"), header + RecordedRowOf("1.jpg"));
  test::WriteFile(folder.File("b.csv"), "\xEF\xBB\xBF" + header + RecordedRowOf("3.jpg"));
  const std::vector<DataRow> rows = ReadRows(ContinuedContent(inputs));
  ASSERT_EQ(rows.size(), 3U);  // the first header is a row, with a finding of its own
  EXPECT_EQ(rows[2].photograph, "3.jpg");
  EXPECT_EQ(rows[2].line, 4U);
}

TEST_F(ContinuedDataTest, RefusesOtherData) {
  EXPECT_EQ(RefusalOf(kRecorderHeader + RecordedRowOf("3.jpg")), "not refused");
  EXPECT_THAT(RefusalOf("Time,other\n" + RecordedRowOf("3.jpg")),
              AllOf(HasSubstr("b.csv does not continue the shoot of "), HasSubstr("Time,other")));
  EXPECT_THAT(RefusalOf(RecordedRowOf("3.jpg")), HasSubstr("no header"));
  EXPECT_THAT(RefusalOf(kRecorderHeader + RecordedRowOf("3.jpg", "1.5,7")),
              HasSubstr("17 fields, and not 16"));
  EXPECT_THAT(RefusalOf(kRecorderHeader + RecordedRowOf("3.jpg", "1500")),
              HasSubstr("another unit"));
  EXPECT_THAT(RefusalOf(kRecorderHeader + RecordedRowOf("./2.jpg")), HasSubstr("both have "));
  EXPECT_THAT(RefusalOf(kRecorderHeader), HasSubstr("no rows"));
}

TEST_F(ContinuedDataTest, RefusesPhotographsOfAnotherSize) {
  test::WriteImage(folder.File("1.jpg"), cv::Mat(36, 64, CV_8UC3));
  test::WriteImage(folder.File("3.jpg"), cv::Mat(72, 128, CV_8UC3));
  EXPECT_THAT(RefusalOf(kRecorderHeader + RecordedRowOf("3.jpg")),
              AllOf(HasSubstr("128x72"), HasSubstr("64x36")));
  test::WriteImage(folder.File("3.jpg"), cv::Mat(36, 64, CV_8UC3));
  EXPECT_EQ(RefusalOf(kRecorderHeader + RecordedRowOf("3.jpg")), "not refused");
}

TEST_F(ContinuedDataTest, NeedsAWorkingFolderIfTheFilesAreInSeveral) {
  EXPECT_EQ(FolderOfData("day/a.csv", {"day/b.csv"}), std::filesystem::path("day"));
  EXPECT_THROW(FolderOfData("day/a.csv", {"day/b.csv", "other/c.csv"}), InputError);
}

}  // namespace
}  // namespace trackedcam::host
