#include "report/thumbnails.h"

#include <filesystem>
#include <stdexcept>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>

#include "support/stage_test.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

// As a caller that embeds every file.
Picture PictureBytes(const std::filesystem::path& file) {
  return {std::filesystem::is_regular_file(file) ? test::ReadFile(file.u8string()) : ""};
}

const cv::Scalar kRed(0, 0, 255);
const cv::Scalar kBlue(255, 0, 0);

class ThumbnailsTest : public testing::Test {
 protected:
  // A PNG of one colour, 720 x 400.
  std::string Image(const std::string& name, const cv::Scalar& colour) {
    std::vector<unsigned char> bytes;
    cv::imencode(".png", cv::Mat(400, 720, CV_8UC3, colour), bytes);
    test::WriteFile(folder.File(name), {bytes.begin(), bytes.end()});
    return folder.File(name);
  }

  static cv::Mat Decoded(const Thumbnail& thumbnail) {
    const std::vector<unsigned char> bytes(thumbnail.bytes.begin(), thumbnail.bytes.end());
    return cv::imdecode(bytes, cv::IMREAD_COLOR);
  }

  static bool IsOf(const cv::Scalar& colour, const Thumbnail& thumbnail) {
    const cv::Vec3b pixel = Decoded(thumbnail).at<cv::Vec3b>(100, 100);
    return cv::norm(pixel, cv::Vec3b(colour[0], colour[1], colour[2])) < 10;
  }

  test::TemporaryFolder folder;
};

TEST_F(ThumbnailsTest, ShowTheReprojectedImageOrElseThePhotograph) {
  const Json result = {
      {"photographs",
       {{{"path", Image("a.png", kRed)}, {"reprojectedImage", nullptr}},
        {{"path", Image("b.png", kRed)}, {"reprojectedImage", Image("Reproject_b.png", kBlue)}},
        {{"path", folder.File("missing.png")}, {"reprojectedImage", nullptr}}}}};
  const std::vector<Thumbnail> thumbnails = MakeThumbnails(result, PictureBytes);
  ASSERT_EQ(thumbnails.size(), 3U);
  EXPECT_EQ(Decoded(thumbnails[0]).size(), cv::Size(360, 200));
  EXPECT_TRUE(IsOf(kRed, thumbnails[0]));
  EXPECT_FALSE(thumbnails[0].isReprojected);
  EXPECT_TRUE(IsOf(kBlue, thumbnails[1]));
  EXPECT_TRUE(thumbnails[1].isReprojected);
  EXPECT_EQ(thumbnails[2].bytes, "");
  EXPECT_FALSE(thumbnails[2].isReprojected);
}

TEST_F(ThumbnailsTest, ForOneMissingReprojectedImageOnlyThatOneShowsItsPhotograph) {
  Json photographs = Json::array();
  for (const char* name : {"a.png", "b.png", "c.png"}) {
    photographs.push_back({{"path", Image(name, kRed)},
                           {"reprojectedImage", Image(std::string("Reproject_") + name, kBlue)}});
  }
  std::filesystem::remove(folder.Path() / "Reproject_b.png");
  const std::vector<Thumbnail> thumbnails =
      MakeThumbnails({{"photographs", photographs}}, PictureBytes);
  ASSERT_EQ(thumbnails.size(), 3U);
  EXPECT_TRUE(IsOf(kBlue, thumbnails[0]));
  EXPECT_TRUE(IsOf(kRed, thumbnails[1]));
  EXPECT_FALSE(thumbnails[1].isReprojected);
  EXPECT_TRUE(IsOf(kBlue, thumbnails[2]));
  EXPECT_TRUE(thumbnails[2].isReprojected);
}

TEST_F(ThumbnailsTest, ReadOnlyWhatTheCallerGivesThem) {
  const Json result = {{"photographs", {{{"path", Image("a.png", kRed)}}}}};
  const auto nothing = [](const std::filesystem::path& /*file*/) { return Picture(); };
  EXPECT_EQ(MakeThumbnails(result, nothing).at(0).bytes, "");
}

// The memory of a decoder must not grow with the processors.
TEST_F(ThumbnailsTest, OfLargePicturesAreTheSame) {
  Json photographs = Json::array();
  for (int i = 0; i < 9; ++i) {
    photographs.push_back(
        {{"path", Image(std::to_string(i) + ".png", cv::Scalar(25 * i, 200 - 20 * i, 90))}});
  }
  const auto large = [](const std::filesystem::path& file) {
    return Picture{PictureBytes(file).bytes, true};
  };
  const Json result = {{"photographs", photographs}};
  const auto one = MakeThumbnails(result, PictureBytes);
  const auto other = MakeThumbnails(result, large);
  ASSERT_EQ(one.size(), 9U);
  for (int i = 0; i < 9; ++i) {
    const Thumbnail& thumbnail = one[static_cast<std::size_t>(i)];
    EXPECT_TRUE(IsOf(cv::Scalar(25 * i, 200 - 20 * i, 90), thumbnail)) << i;
    EXPECT_EQ(thumbnail.bytes, other.at(static_cast<std::size_t>(i)).bytes) << i;
  }
}

TEST_F(ThumbnailsTest, NeedNoKeyOfTheResult) {
  EXPECT_TRUE(MakeThumbnails(Json::object(), PictureBytes).empty());
  const Json odd = {{"photographs", {1, nullptr, {{"path", 5}}, Json::object()}}};
  EXPECT_EQ(MakeThumbnails(odd, PictureBytes).size(), 4U);
}

// Without corners drawn in, and large enough for the edges of the squares.
TEST_F(ThumbnailsTest, AreLargeIfThePageIsMailed) {
  const std::string wide = folder.File("wide.png");
  std::vector<unsigned char> bytes;
  cv::imencode(".png", cv::Mat(1080, 3840, CV_8UC3, kBlue), bytes);
  test::WriteFile(wide, {bytes.begin(), bytes.end()});
  const Json photographs = {{{"reprojectedImage", Image("red.png", kRed)}, {"path", wide}},
                            {{"path", Image("blue.png", kBlue)}},
                            {{"reprojectedImage", Image("red.png", kRed)}, {"path", "none.jpg"}}};
  const auto thumbnails = MakeThumbnails({{"photographs", photographs}}, PictureBytes, true);
  EXPECT_EQ(Decoded(thumbnails.at(0)).cols, 1920);
  EXPECT_EQ(Decoded(thumbnails.at(0)).rows, 540);
  EXPECT_TRUE(IsOf(kBlue, thumbnails.at(0)));
  EXPECT_FALSE(thumbnails.at(0).isReprojected);
  EXPECT_EQ(Decoded(thumbnails.at(1)).cols, 720);  // not enlarged
  EXPECT_TRUE(IsOf(kRed, thumbnails.at(2)));       // what there is
}

}  // namespace
}  // namespace trackedcam::report
