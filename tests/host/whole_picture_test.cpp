#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>

#include "host/input/image_header.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

class WholePicture : public testing::TestWithParam<const char*> {
 protected:
  bool IsWhole(const std::string& bytes) const {
    test::WriteFile(folder.File("picture"), bytes);
    return IsCompleteImage(folder.Path() / "picture");
  }

  test::TemporaryFolder folder;
};

TEST_P(WholePicture, IsNoneWhereItIsCut) {
  cv::Mat picture(90, 160, CV_8UC3);
  cv::randu(picture, 0, 255);
  std::vector<unsigned char> encoded;
  ASSERT_TRUE(cv::imencode(GetParam(), picture, encoded));
  const std::string bytes(encoded.begin(), encoded.end());
  EXPECT_TRUE(IsWhole(bytes));
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{11}, std::size_t{30},
                                   bytes.size() / 2, bytes.size() * 9 / 10, bytes.size() - 1}) {
    if (GetParam() == std::string(".tif") && length == bytes.size() - 1) {
      continue;  // behind its directory stand values that nobody needs
    }
    EXPECT_FALSE(IsWhole(bytes.substr(0, length))) << GetParam() << ' ' << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, WholePicture,
                         testing::Values(".jpg", ".png", ".bmp", ".webp", ".tif"));

TEST(WholePictureTest, IsAFile) {
  const test::TemporaryFolder folder;
  EXPECT_FALSE(IsCompleteImage(folder.Path()));
  EXPECT_FALSE(IsCompleteImage(folder.Path() / "missing.jpg"));
}

}  // namespace
}  // namespace trackedcam::host
