#include "report/undistorted.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>

#include "support/stage_test.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kFocal = 500, kCentreX = 310, kCentreY = 190;
constexpr double kK1 = -0.3, kK2 = 0.05;

// A photograph of 640 x 360, all white.
std::string Photograph(const test::TemporaryFolder& folder, const std::string& name) {
  std::vector<unsigned char> bytes;
  cv::imencode(".png", cv::Mat(360, 640, CV_8UC1, cv::Scalar(255)), bytes);
  test::WriteFile(folder.File(name), {bytes.begin(), bytes.end()});
  return folder.File(name);
}

// Where the lens shows a point at depth 1.
Json Seen(double x, double y) {
  const double r2 = x * x + y * y;
  const double radial = 1 + kK1 * r2 + kK2 * r2 * r2;
  return {kFocal * radial * x + kCentreX, kFocal * radial * y + kCentreY};
}

// The 4 x 3 corners of a board that fills the image from -reach to reach.
Json Corners(double reach) {
  Json corners = Json::array();
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      corners.push_back(Seen(reach * (column / 1.5 - 1), 0.5 * reach * (row - 1)));
    }
  }
  return corners;
}

// As a caller that embeds every file.
Picture PhotographBytes(const std::filesystem::path& file) {
  return {std::filesystem::is_regular_file(file) ? test::ReadFile(file.u8string()) : ""};
}

Json Entry(const std::string& path, const std::string& state, double reach) {
  return {{"path", path}, {"state", state}, {"crossCheck", {{"corners", Corners(reach)}}}};
}

Json Result(const Json& photographs) {
  return {{"imageSize", {640, 360}},
          {"normFocal", {kFocal / 640, kFocal / 360}},
          {"normCenter", {kCentreX / 640, kCentreY / 360}},
          {"distortion", {kK1, kK2, 0, 0, 0}},
          {"inputs", {{"board", {4, 3}}}},
          {"photographs", photographs}};
}

TEST(Undistorted, ShowsTheUsedPhotographWithTheCornerFarthestOut) {
  const test::TemporaryFolder folder;
  const std::string path = Photograph(folder, "a.png");
  const UndistortedPhotograph made =
      MakeUndistorted(Result({Entry(path, "used", 0.1), Entry(path, "used", 0.4),
                              Entry(path, "leftOutByFilter", 0.5), Entry(path, "used", 0.3)}),
                      PhotographBytes);
  EXPECT_EQ(made.place, 1U);
  const std::vector<unsigned char> bytes(made.bytes.begin(), made.bytes.end());
  const cv::Mat image = cv::imdecode(bytes, cv::IMREAD_GRAYSCALE);
  EXPECT_EQ(image.size(), cv::Size(1000, 562));
  EXPECT_EQ(made.size, (std::array<int, 2>{1000, 562}));
  // The whole photograph: its middle reaches to within some pixels of the edges.
  EXPECT_GT(image.at<unsigned char>(281, 500), 250);
  EXPECT_LT(image.at<unsigned char>(2, 500), 5);
}

TEST(Undistorted, HasStraightLinesAlongTheBoard) {
  const test::TemporaryFolder folder;
  const Json result = Result(Json::array({Entry(Photograph(folder, "a.png"), "used", 0.45)}));
  const auto lines = MakeUndistorted(result, PhotographBytes).lines;
  ASSERT_EQ(lines.size(), 7U);
  // The board is parallel to the image, so that without distortion its lines are along the axes and
  // evenly apart.
  for (std::size_t row = 0; row < 3; ++row) {
    EXPECT_NEAR(lines[row][1], lines[row][3], 0.01);
    EXPECT_NEAR(lines[row][0], lines[0][0], 0.01);
    EXPECT_NEAR(lines[row][2], lines[0][2], 0.01);
  }
  EXPECT_NEAR(lines[1][1] - lines[0][1], lines[2][1] - lines[1][1], 0.01);
  for (std::size_t column = 3; column < 7; ++column) {
    EXPECT_NEAR(lines[column][0], lines[column][2], 0.01);
  }
  EXPECT_NEAR(lines[4][0] - lines[3][0], lines[6][0] - lines[5][0], 0.01);
  EXPECT_GT(lines[0][2] - lines[0][0], 500);
}

TEST(Undistorted, IsEmptyWithoutAPhotographOrALens) {
  const test::TemporaryFolder folder;
  const std::string path = Photograph(folder, "a.png");
  const auto isEmpty = [](const Json& result) {
    return MakeUndistorted(result, PhotographBytes).bytes.empty();
  };
  EXPECT_FALSE(isEmpty(Result(Json::array({Entry(path, "used", 0.4)}))));
  EXPECT_TRUE(isEmpty(Json::object()));
  EXPECT_TRUE(isEmpty(Result(Json::array())));
  EXPECT_TRUE(isEmpty(Result(Json::array({Entry(folder.File("none.png"), "used", 0.4)}))));
  EXPECT_TRUE(isEmpty(Result(Json::array({Entry("", "used", 0.4)}))));
  EXPECT_TRUE(isEmpty(Result(Json::array({Json{{"path", path}, {"state", "used"}}}))));
  test::WriteFile(folder.File("text.png"), "no image");
  EXPECT_TRUE(isEmpty(Result(Json::array({Entry(folder.File("text.png"), "used", 0.4)}))));
  const auto isEmptyWith = [&](const char* key, const Json& value) {
    Json result = Result(Json::array({Entry(path, "used", 0.4)}));
    result[key] = value;
    return isEmpty(result);
  };
  EXPECT_TRUE(isEmptyWith("imageSize", {641, 360}));
  EXPECT_TRUE(isEmptyWith("imageSize", {1e300, 360}));
  EXPECT_TRUE(isEmptyWith("normFocal", {0, 1}));
  EXPECT_TRUE(isEmptyWith("distortion", {0, 0}));
}

TEST(Undistorted, HasNoLinesIfTheBoardIsAnother) {
  const test::TemporaryFolder folder;
  Json result = Result(Json::array({Entry(Photograph(folder, "a.png"), "used", 0.4)}));
  result["inputs"]["board"] = {5, 3};
  EXPECT_FALSE(MakeUndistorted(result, PhotographBytes).bytes.empty());
  EXPECT_TRUE(MakeUndistorted(result, PhotographBytes).lines.empty());
}

}  // namespace
}  // namespace trackedcam::report
