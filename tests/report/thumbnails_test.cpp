#include "report/thumbnails.h"

#include <stdexcept>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>

#include "support/stage_test.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

const cv::Scalar kRed(0, 0, 255);
const cv::Scalar kBlue(255, 0, 0);

class ThumbnailsTest : public testing::Test {
 protected:
  // A PNG of one colour, 720 x 400.
  std::string Picture(const std::string& name, const cv::Scalar& colour) {
    std::vector<unsigned char> bytes;
    cv::imencode(".png", cv::Mat(400, 720, CV_8UC3, colour), bytes);
    test::WriteFile(folder.File(name), {bytes.begin(), bytes.end()});
    return folder.File(name);
  }

  static cv::Mat Decoded(const Thumbnail& thumbnail) {
    const std::vector<unsigned char> bytes(thumbnail.bytes.begin(), thumbnail.bytes.end());
    return bytes.empty() ? cv::Mat() : cv::imdecode(bytes, cv::IMREAD_COLOR);
  }

  test::TemporaryFolder folder;
};

TEST_F(ThumbnailsTest, ShowsTheReprojectedImageWhereThereIsOne) {
  Picture("a.png", kRed);
  Picture("b.png", kRed);
  const Json result = {{"photographs", {"a.png", "b.png", "missing.png"}},
                       {"used", {"b.png"}},
                       {"images", {Picture("Reproject_b.png", kBlue)}},
                       {"inputs", {{"workingFolder", folder.Path().u8string()}}}};
  const std::vector<Thumbnail> thumbnails = MakeThumbnails(result.dump());
  ASSERT_EQ(thumbnails.size(), 3U);
  EXPECT_EQ(thumbnails[1].photograph, "b.png");
  const cv::Mat photograph = Decoded(thumbnails[0]);
  const cv::Mat reprojected = Decoded(thumbnails[1]);
  EXPECT_EQ(photograph.size(), cv::Size(360, 200));
  EXPECT_GT(photograph.at<cv::Vec3b>(100, 100)[2], 250);
  EXPECT_GT(reprojected.at<cv::Vec3b>(100, 100)[0], 250);
  EXPECT_EQ(thumbnails[2].bytes, "");
}

TEST_F(ThumbnailsTest, NeedsNoKeyOfTheResult) {
  EXPECT_TRUE(MakeThumbnails("{}").empty());
  const Json odd = {{"photographs", {1, nullptr}}, {"used", 5}, {"inputs", {{"workingFolder", 1}}}};
  EXPECT_EQ(MakeThumbnails(odd.dump()).size(), 2U);
}

TEST_F(ThumbnailsTest, RefusesWhatIsNoResult) {
  EXPECT_THROW(MakeThumbnails("[]"), std::invalid_argument);
  EXPECT_THROW(MakeThumbnails(""), std::invalid_argument);
}

}  // namespace
}  // namespace trackedcam::report
