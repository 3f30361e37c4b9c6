// The chart as it leaves the printer: rendered by other programs at a known resolution, and
// measured.

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

constexpr double kPixelsPerMm = 10;  // 254 dpi
constexpr double kToleranceMm = 0.1;

struct Request {
  std::string out;
  cv::Size board;
  std::string square;
  double squareMm;
  std::string paper;
  cv::Size2d pageMm;
  int rulerMm;
};

void PrintTo(const Request& request, std::ostream* stream) {
  *stream << request.board.width << 'x' << request.board.height << ", " << request.square << " on "
          << request.paper << " in " << request.out;
}

int Pixels(double millimetres) {
  return static_cast<int>(std::lround(millimetres * kPixelsPerMm));
}

class ChartPrint : public testing::TestWithParam<Request> {
 protected:
  void SetUp() override {
    const Request& request = GetParam();
    const ProgramRun run = RunHostProgram(
        folder.Path(),
        {"chart", "--board",
         std::to_string(request.board.width) + 'x' + std::to_string(request.board.height),
         "--square", request.square, "--paper", request.paper, "--out", request.out});
    ASSERT_EQ(run.status, 0) << run.error;
    const int status = std::filesystem::path(request.out).extension() == ".pdf"
                           ? RunTool(folder.Path(), "pdftoppm",
                                     {"-r", "254", "-png", "-singlefile", request.out, "page"})
                           : RunTool(folder.Path(), "rsvg-convert",
                                     {"-d", "254", "-p", "254", request.out, "-o", "page.png"});
    ASSERT_EQ(status, 0) << test::ReadFile(folder.File("tool_error"));
    page = cv::imread(folder.File("page.png"), cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(page.empty());
  }

  // The inner corners in millimetres from the top left of the page.
  std::vector<cv::Point2d> FindCorners() const {
    std::vector<cv::Point2f> corners;
    const cv::Size board = GetParam().board;
    cv::Mat small;
    cv::resize(page, small, {}, 0.25, 0.25, cv::INTER_AREA);
    EXPECT_TRUE(cv::findChessboardCorners(small, board, corners));
    for (cv::Point2f& corner : corners) {
      corner *= 4;
    }
    const int window = Pixels(GetParam().squareMm / 4);
    cv::cornerSubPix(page, corners, {window, window}, {-1, -1},
                     {cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 50, 0.001});
    std::vector<cv::Point2d> millimetres;
    millimetres.reserve(corners.size());
    for (const cv::Point2f& corner : corners) {
      // The centre of the first pixel is (0, 0).
      millimetres.emplace_back((corner.x + 0.5) / kPixelsPerMm, (corner.y + 0.5) / kPixelsPerMm);
    }
    return millimetres;
  }

  test::TemporaryFolder folder;
  cv::Mat page;
};

// Where the dark stretches of a row of pixels have their middle, millimetres.
std::vector<double> DarkMiddles(const cv::Mat& row) {
  std::vector<double> middles;
  double sum = 0;
  double weight = 0;
  for (int x = 0; x < row.cols; ++x) {
    const double darkness = 255 - row.at<uchar>(0, x);
    sum += darkness * (x + 0.5);
    weight += darkness;
    if (darkness == 0 && weight > 0) {
      middles.push_back(sum / weight / kPixelsPerMm);
      sum = weight = 0;
    }
  }
  return middles;
}

TEST_P(ChartPrint, HasTheSizeOfThePaper) {
  // To a pixel: both programs round up.
  EXPECT_NEAR(page.cols, GetParam().pageMm.width * kPixelsPerMm, 1);
  EXPECT_NEAR(page.rows, GetParam().pageMm.height * kPixelsPerMm, 1);
}

TEST_P(ChartPrint, HasTheBoardAtTrueScale) {
  const cv::Size board = GetParam().board;
  const double square = GetParam().squareMm;
  const std::vector<cv::Point2d> corners = FindCorners();
  ASSERT_EQ(corners.size(), board.area());
  // The finder must report the corner at the top left first, as the page says.
  double worst = 0;
  for (int row = 0; row < board.height; ++row) {
    for (int col = 0; col < board.width; ++col) {
      const cv::Point2d expected = corners.front() + cv::Point2d(col * square, row * square);
      worst = std::max(worst, cv::norm(corners[row * board.width + col] - expected));
    }
  }
  EXPECT_LT(worst, kToleranceMm);
}

TEST_P(ChartPrint, HasWhiteAroundTheBoard) {
  const cv::Size board = GetParam().board;
  const double square = GetParam().squareMm;
  const std::vector<cv::Point2d> corners = FindCorners();
  ASSERT_FALSE(corners.empty());
  // Two squares left of and above the first inner corner, one of them white.
  const cv::Rect around(Pixels(corners.front().x - 2 * square),
                        Pixels(corners.front().y - 2 * square), Pixels((board.width + 3) * square),
                        Pixels((board.height + 3) * square));
  ASSERT_EQ(around & cv::Rect({}, page.size()), around);
  const cv::Mat margin = page(around).clone();
  const cv::Rect edge = cv::boundingRect(margin < 128);
  EXPECT_NEAR(edge.x / kPixelsPerMm, square, kToleranceMm);
  EXPECT_NEAR(edge.y / kPixelsPerMm, square, kToleranceMm);
  EXPECT_NEAR(edge.width / kPixelsPerMm, (board.width + 1) * square, kToleranceMm);
  EXPECT_NEAR(edge.height / kPixelsPerMm, (board.height + 1) * square, kToleranceMm);

  // The board with the pixels that its edge crosses.
  const cv::Rect grown = edge + cv::Size(2, 2) - cv::Point(1, 1);
  margin(grown).setTo(255);
  EXPECT_EQ(cv::countNonZero(margin != 255), 0);
}

TEST_P(ChartPrint, HasARulerInMillimetres) {
  const double square = GetParam().squareMm;
  const std::vector<cv::Point2d> corners = FindCorners();
  ASSERT_FALSE(corners.empty());
  const int belowBoard = Pixels(corners.back().y + 1.5 * square);
  const cv::Rect footer = cv::boundingRect(page.rowRange(belowBoard, page.rows) < 128);
  const std::vector<double> ticks = DarkMiddles(page.row(belowBoard + footer.y + Pixels(0.8)));
  ASSERT_EQ(ticks.size(), GetParam().rulerMm + 1);
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    EXPECT_NEAR(ticks[i] - ticks.front(), i, kToleranceMm);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Requests, ChartPrint,
    testing::Values(Request{"chart.pdf", {9, 6}, "30mm", 30, "A3", {420, 297}, 300},
                    Request{"chart.svg", {9, 6}, "0.03", 30, "A3", {420, 297}, 300},
                    Request{"chart.pdf", {6, 9}, "2cm", 20, "A4", {210, 297}, 140},
                    Request{"chart.svg", {10, 7}, "6.35mm", 6.35, "Letter", {279.4, 215.9}, 100}));

}  // namespace
}  // namespace trackedcam::app
