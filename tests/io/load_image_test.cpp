#include "io/load_image.h"

#include <regex>
#include <stdexcept>

#include "support/image_file.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

class LoadImageTest : public test::StageTest {
 protected:
  std::string WriteImage(const std::string& name, const cv::Mat& image) {
    return test::WriteImage(folder.File(name), image);
  }
};

TEST_F(LoadImageTest, ReadsPathsThatAreNotAscii) {
  const cv::Mat image = LoadImage(WriteImage("撮影é.png", cv::Mat(4, 6, CV_8UC3, {10, 20, 30})));
  ASSERT_EQ(image.size(), cv::Size(6, 4));
  EXPECT_EQ(image.at<cv::Vec3b>(3, 5), cv::Vec3b(10, 20, 30));
}

TEST_F(LoadImageTest, GivesThreeChannelsOfAGreyPhotograph) {
  const cv::Mat image = LoadImage(WriteImage("grey.png", cv::Mat(4, 6, CV_8UC1, 77)));
  ASSERT_EQ(image.type(), CV_8UC3);
  EXPECT_EQ(image.at<cv::Vec3b>(0, 0), cv::Vec3b(77, 77, 77));
}

TEST_F(LoadImageTest, PrintsNothingForAFileThatIsNotAnImage) {
  test::WriteFile(folder.File("text.jpg"), "not a photograph");
  const std::string console =
      ConsoleOf([&] { EXPECT_TRUE(LoadImage(folder.File("text.jpg")).empty()); });
  EXPECT_EQ(console, "");
}

TEST_F(LoadImageTest, PrintsAnAddressForAFileThatDoesNotOpen) {
  for (const std::string& path : {folder.File("missing.jpg"), folder.Path().u8string()}) {
    const std::string console = ConsoleOf([&] { EXPECT_TRUE(LoadImage(path).empty()); });
    EXPECT_TRUE(std::regex_match(console, std::regex("Failed to open 0x[0-9a-f]+\n"))) << console;
  }
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(LoadImageTest, ReportsWhetherAFileOpens) {
  test::WriteFile(folder.File("text.jpg"), "not a photograph");
  test::WriteFile(folder.File("empty.jpg"), "");
  const std::string console = ConsoleOf([&] {
    EXPECT_TRUE(ImageOpens(folder.File("text.jpg")));
    EXPECT_TRUE(ImageOpens(folder.File("empty.jpg")));
  });
  EXPECT_EQ(console, "");
  for (const std::string& path : {folder.File("missing.jpg"), folder.Path().u8string()}) {
    const std::string line = ConsoleOf([&] { EXPECT_FALSE(ImageOpens(path)); });
    EXPECT_TRUE(std::regex_match(line, std::regex("Failed to open 0x[0-9a-f]+\n"))) << line;
  }
  EXPECT_THROW(ImageOpens("caf\xE9.jpg"), std::range_error);
}

TEST_F(LoadImageTest, LeavesAnEmptyFileToTheDecoder) {
  test::WriteFile(folder.File("empty.jpg"), "");
  EXPECT_THROW(LoadImage(folder.File("empty.jpg")), cv::Exception);
}

TEST_F(LoadImageTest, RefusesAPathThatIsNotUtf8) {
  EXPECT_THROW(LoadImage("caf\xE9.jpg"), std::range_error);
}

}  // namespace
}  // namespace trackedcam
