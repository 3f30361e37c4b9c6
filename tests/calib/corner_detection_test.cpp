#include "calib/corner_detection.h"

#include <algorithm>

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include "support/drawn_board.h"
#include "support/image_file.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

using test::DrawnBoard;
using test::WriteImage;

constexpr int kCols = 5;
constexpr int kRows = 4;

class CornerDetectionTest : public test::StageTest {
 protected:
  // The first corner is 0.5 pixel above and to the left of the pixel `first`.
  std::string Photograph(const std::string& name, cv::Size image, cv::Point first, int square) {
    return WriteImage(folder.File(name), DrawnBoard(image, first, square, kCols, kRows));
  }

  std::string GoodPhotograph(const std::string& name) {
    return Photograph(name, {320, 240}, {80, 70}, 30);
  }

  ResultCode Detect(const std::vector<std::string>& paths) {
    imagePaths = paths;
    for (std::size_t i = 0; i < paths.size(); ++i) {
      records.emplace_back(15, static_cast<double>(i));
    }
    return DetectCorners(log, imageSize, imagePaths, records, objectPoints, boardTemplate,
                         imagePoints, cv::Size(kCols, kRows), Num_TrackerData);
  }

  std::vector<std::string> RawData() const {
    const std::vector<std::string> lines = LogLines();
    const auto start = std::find(lines.begin(), lines.end(), "RAW DATA START");
    const auto end = std::find(lines.begin(), lines.end(), "RAW DATA END");
    return start == lines.end() ? std::vector<std::string>{}
                                : std::vector<std::string>(start + 1, end);
  }

  cv::Size imageSize;
  std::vector<std::string> imagePaths;
  std::vector<TrackerRecord> records;
  std::vector<BoardTemplate> objectPoints;
  BoardTemplate boardTemplate = {{1, 2, 3}};
  std::vector<Corners> imagePoints;
  int Num_TrackerData = 100;
};

void ExpectCorners(const Corners& corners, cv::Point first, int square, double tolerance) {
  ASSERT_EQ(corners.size(), static_cast<std::size_t>(kCols * kRows));
  for (int r = 0; r < kRows; ++r) {
    for (int c = 0; c < kCols; ++c) {
      const cv::Point2f corner = corners[static_cast<std::size_t>(r * kCols + c)];
      EXPECT_NEAR(corner.x, first.x - 0.5 + c * square, tolerance);
      EXPECT_NEAR(corner.y, first.y - 0.5 + r * square, tolerance);
    }
  }
}

TEST_F(CornerDetectionTest, FindsTheCornersRowByRow) {
  EXPECT_EQ(Detect({GoodPhotograph("a.png")}), 4);
  ASSERT_EQ(imagePoints.size(), 1u);
  ExpectCorners(imagePoints[0], {80, 70}, 30, 0.05);
  EXPECT_EQ(objectPoints, std::vector<BoardTemplate>{boardTemplate});
  EXPECT_EQ(imageSize, cv::Size(320, 240));
}

TEST_F(CornerDetectionTest, FindsCornersAtFullResolutionInALargePhotograph) {
  EXPECT_EQ(Detect({Photograph("large.png", {2560, 1440}, {601, 403}, 200)}), 4);
  ASSERT_EQ(imagePoints.size(), 1u);
  ExpectCorners(imagePoints[0], {601, 403}, 200, 0.1);
}

// The result of the second refinement depends on that of the first.
TEST_F(CornerDetectionTest, RefinesInTheReducedPhotographFirst) {
  cv::Mat image = DrawnBoard({2560, 1440}, {601, 403}, 200, kCols, kRows);
  cv::Mat noise(image.size(), CV_16SC3);
  cv::RNG(1).fill(noise, cv::RNG::NORMAL, 0, 12);
  cv::add(image, noise, image, cv::noArray(), CV_8U);
  EXPECT_EQ(Detect({WriteImage(folder.File("large.png"), image)}), 4);
  ASSERT_EQ(imagePoints.size(), 1u);

  cv::Mat grey;
  cv::Mat reduced;
  cv::cvtColor(image, grey, cv::COLOR_BGR2GRAY);
  cv::resize(image, reduced, {1280, 720});
  cv::cvtColor(reduced, reduced, cv::COLOR_BGR2GRAY);
  Corners expected;
  ASSERT_TRUE(cv::findChessboardCorners(
      reduced, {kCols, kRows}, expected,
      cv::CALIB_CB_ADAPTIVE_THRESH + cv::CALIB_CB_NORMALIZE_IMAGE + cv::CALIB_CB_FAST_CHECK));
  const auto toFullSize = [&](Corners corners) {
    for (cv::Point2f& corner : corners) {
      corner *= 2;
    }
    cv::cornerSubPix(grey, corners, {51, 51}, {-1, -1},
                     {cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.1});
    return corners;
  };
  const Corners unrefined = toFullSize(expected);
  cv::cornerSubPix(reduced, expected, {25, 25}, {-1, -1},
                   {cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.1});
  EXPECT_EQ(imagePoints[0], toFullSize(expected));
  EXPECT_NE(imagePoints[0], unrefined);
}

TEST_F(CornerDetectionTest, ReducesFrom1440RowsOn) {
  EXPECT_EQ(ReductionFactor({1920, 1080}), 1.0F);
  EXPECT_EQ(ReductionFactor({2560, 1439}), 1.0F);
  EXPECT_EQ(ReductionFactor({2560, 1440}), 2.0F);
  EXPECT_EQ(ReductionFactor({3840, 2160}), 3.0F);
  EXPECT_EQ(ReducedSize({2560, 1440}, 2.0F), cv::Size(1280, 720));
  EXPECT_EQ(ReducedSize({3840, 2160}, 3.0F), cv::Size(1280, 720));
  EXPECT_EQ(ReducedSize({2561, 1441}, 2.0F), cv::Size(1281, 721));  // halves are rounded up
}

TEST_F(CornerDetectionTest, ReducesByTheSizeOfTheFirstPhotographThatLoads) {
  const std::string small = GoodPhotograph("small.png");
  const std::string large = Photograph("large.png", {2560, 1440}, {601, 403}, 200);
  EXPECT_EQ(Detect({folder.File("missing.png"), small, large}), 4);
  EXPECT_EQ(imageSize, cv::Size(320, 240));
  ASSERT_EQ(imagePoints.size(), 2u);
  ExpectCorners(imagePoints[1], {601, 403}, 200, 0.1);
}

TEST_F(CornerDetectionTest, RefinesWithinAQuarterOfASquare) {
  const auto window = [](float pitchX, float pitchY) {
    Corners corners;
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 4; ++c) {
        corners.emplace_back(10 + static_cast<float>(c) * pitchX,
                             20 + static_cast<float>(r) * pitchY);
      }
    }
    return RefinementWindow(corners, {4, 3});
  };
  EXPECT_EQ(window(40, 40), cv::Size(11, 11));
  EXPECT_EQ(window(3.4F, 3.4F), cv::Size(1, 1));
  EXPECT_EQ(window(48, 15.5F), cv::Size(13, 5));
  EXPECT_EQ(window(48, 15.4F), cv::Size(13, 3));
}

TEST_F(CornerDetectionTest, MeasuresSlantedSquaresByTheirLength) {
  // Steps of (24, 32) and (-32, 24), both 40 pixels long.
  const Corners corners = {{100, 100}, {124, 132}, {68, 124}, {92, 156}};
  EXPECT_EQ(RefinementWindow(corners, {2, 2}), cv::Size(11, 11));
}

TEST_F(CornerDetectionTest, DropsPhotographsThatCannotBeUsed) {
  const std::string blank =
      WriteImage(folder.File("blank.png"), cv::Mat(240, 320, CV_8UC3, cv::Scalar::all(128)));
  test::WriteFile(folder.File("text.jpg"), "no photograph");
  test::WriteFile(folder.File("empty.jpg"), "");
  const std::string missing = folder.File("missing.png");
  const std::string good = GoodPhotograph("good.png");
  Num_TrackerData = 6;
  ConsoleOf([&] {
    EXPECT_EQ(Detect({missing, blank, good, folder.File("text.jpg"), folder.File("empty.jpg"), ""}),
              4);
  });
  EXPECT_EQ(Num_TrackerData, 3);  // lowered for the first, the second and the fourth
  EXPECT_EQ(imagePaths, std::vector<std::string>{good});
  EXPECT_EQ(records, std::vector<TrackerRecord>{TrackerRecord(15, 2.0)});
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{
                "Process : " + missing, missing + " Not exist!", "Process : " + blank,
                "Read " + blank + " Failed!", "Process : " + good,
                "Process : " + folder.File("text.jpg"), folder.File("text.jpg") + " Not exist!",
                "Process : " + folder.File("empty.jpg"), folder.File("empty.jpg") + " Not exist!",
                "Process : ", " Not exist!", "The amount of useful data is too small. (< 12 )",
                "Error code 4: Amount of valid images < 12."}));
}

TEST_F(CornerDetectionTest, PrintsTheStepsOfADroppedPhotographInOrder) {
  const std::string missing = folder.File("missing.png");
  Num_TrackerData = 1;
  const std::string console = ConsoleOf([&] { Detect({missing}); });
  const auto after = [&console](const std::string& text, std::size_t from) {
    const std::size_t at = console.find(text, from);
    EXPECT_NE(at, std::string::npos) << text << " is missing in\n" << console;
    return at + text.size();
  };
  std::size_t at = after("Process : " + missing + "\n", 0);
  at = after("Failed to open 0x", at);
  at = after("\n" + missing + "2", at);  // no line end before the time stamp, which begins with 2
  at = after("\t" + missing + " Not exist!\n", at);
  after("Num_TrackerData - 1, Num_TrackerData = 0\n", at);
}

TEST_F(CornerDetectionTest, CountsUnusableBelowTheLoweredCountOnly) {
  int count = 20;
  for (const std::size_t index : {0, 1, 18, 19}) {
    CountUnusablePhotograph(index, count);
  }
  EXPECT_EQ(count, 18);
  CountUnusablePhotograph(17, count);
  EXPECT_EQ(count, 17);
}

TEST_F(CornerDetectionTest, NeverCountsBelowZero) {
  int none = 0;
  CountUnusablePhotograph(0, none);
  EXPECT_EQ(none, 0);
  int negative = -3;
  CountUnusablePhotograph(0, negative);
  EXPECT_EQ(negative, -3);
}

TEST_F(CornerDetectionTest, NeedsTwelvePhotographs) {
  EXPECT_EQ(Detect(std::vector<std::string>(11, GoodPhotograph("good.png"))), 4);
  EXPECT_EQ(imagePoints.size(), 11u);
  EXPECT_TRUE(RawData().empty());
}

TEST_F(CornerDetectionTest, LogsTheRawDataOfTwelvePhotographs) {
  const std::string good = GoodPhotograph("good.png");
  std::vector<std::string> paths(13, good);
  paths[3] = folder.File("missing.png");
  EXPECT_EQ(Detect(paths), 0);
  const std::vector<std::string> raw = RawData();
  constexpr std::size_t kLines = 2 + kCols * kRows;
  ASSERT_EQ(raw.size(), 12 * kLines);
  EXPECT_EQ(LogLines()[14], "Corner detection successful.");
  EXPECT_EQ(raw[3 * kLines], good);
  // The record of the photograph after the missing one.
  std::string numbers = "4.000000";
  for (int i = 1; i < 15; ++i) {
    numbers += " 4.000000";
  }
  EXPECT_EQ(raw[3 * kLines + 1], numbers);
  EXPECT_EQ(raw[2],
            std::to_string(imagePoints[0][0].x) + " " + std::to_string(imagePoints[0][0].y));
  EXPECT_EQ(raw[kLines - 1], std::to_string(imagePoints[0].back().x) + " " +
                                 std::to_string(imagePoints[0].back().y));
}

TEST_F(CornerDetectionTest, PassesOnTheExceptionOfTheDetectorForAnInvalidBoard) {
  imagePaths = {GoodPhotograph("good.png")};
  records = {TrackerRecord(15)};
  EXPECT_THROW(DetectCorners(log, imageSize, imagePaths, records, objectPoints, boardTemplate,
                             imagePoints, cv::Size(1, 4), Num_TrackerData),
               cv::Exception);
}

}  // namespace
}  // namespace trackedcam
