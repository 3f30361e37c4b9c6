#include "simulator/chart_painter.h"

#include <algorithm>
#include <cmath>

namespace trackedcam::simulator {
namespace {

constexpr float kBlack = 28;
constexpr float kWhite = 222;
// Along each side of a pixel that does not see one colour only.
constexpr int kSamples = 8;

}  // namespace

ChartPainter::ChartPainter(const Chart& chart, const Lens& lens, int imageWidth, int imageHeight)
    : chart_(chart), lens_(lens), size_(imageWidth, imageHeight) {
  rays_.reserve((size_.width + 1) * static_cast<std::size_t>(size_.height + 1));
  for (int row = 0; row <= size_.height; ++row) {
    for (int col = 0; col <= size_.width; ++col) {
      const Eigen::Vector2d ray = lens_.Ray({col - 0.5, row - 0.5});
      rays_.push_back({ray.x(), ray.y()});
    }
  }
}

void ChartPainter::Paint(cv::Mat& picture, const Eigen::Isometry3d& Transform_Cam_Chart) const {
  // From the chart's plane, in squares, to the plane z = 1; then back.
  Eigen::Matrix3d plane;
  plane << Transform_Cam_Chart.linear().leftCols<2>() * chart_.squareMetres,
      Transform_Cam_Chart.translation();
  const Eigen::Matrix3d homography = plane.inverse();

  const cv::Rect area = PaintedArea(Transform_Cam_Chart);
  std::vector<ChartPoint> upper(area.width + 1);
  std::vector<ChartPoint> lower(area.width + 1);
  const auto rays = [&](int row) {
    return &rays_[row * static_cast<std::size_t>(size_.width + 1) + area.x];
  };
  ToChart(homography, rays(area.y), lower);
  for (int row = area.y; row < area.y + area.height; ++row) {
    std::swap(upper, lower);
    ToChart(homography, rays(row + 1), lower);
    float* pixels = picture.ptr<float>(row) + area.x;
    for (int col = 0; col < area.width; ++col) {
      pixels[col] = MeanLevel(&upper[col], &lower[col], pixels[col]);
    }
  }
}

cv::Rect ChartPainter::PaintedArea(const Eigen::Isometry3d& Transform_Cam_Chart) const {
  // The outline bends a little between its points.
  constexpr int kMargin = 8;
  Eigen::Array2d least = Eigen::Array2d::Constant(1e9);
  Eigen::Array2d most = -least;
  for (const Eigen::Vector3d& point : chart_.PaperOutline()) {
    const Eigen::Array2d pixel = lens_.Project(Transform_Cam_Chart * point);
    least = least.min(pixel);
    most = most.max(pixel);
  }
  const cv::Point first(cvFloor(least.x()) - kMargin, cvFloor(least.y()) - kMargin);
  const cv::Point last(cvCeil(most.x()) + kMargin, cvCeil(most.y()) + kMargin);
  return cv::Rect(first, last) & cv::Rect({0, 0}, size_);
}

void ChartPainter::ToChart(const Eigen::Matrix3d& homography, const Point* rays,
                           std::vector<ChartPoint>& points) const {
  const double* h = homography.data();  // columns first
  const int width = chart_.cols + 2 * kBorderSquares + 3;
  const auto cell = [](double squares, int count) {
    return std::clamp(static_cast<int>(std::floor(squares)), -2 - kBorderSquares,
                      count + kBorderSquares);
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto [rayX, rayY] = rays[i];
    const double depth = h[2] * rayX + h[5] * rayY + h[8];
    const double x = (h[0] * rayX + h[3] * rayY + h[6]) / depth;
    const double y = (h[1] * rayX + h[4] * rayY + h[7]) / depth;
    points[i] = {x, y, cell(y, chart_.rows) * width + cell(x, chart_.cols)};
  }
}

float ChartPainter::MeanLevel(const ChartPoint* upper, const ChartPoint* lower,
                              float background) const {
  if (upper[0].cell == upper[1].cell && upper[0].cell == lower[0].cell &&
      upper[0].cell == lower[1].cell) {
    return Level(upper[0].x, upper[0].y, background);
  }
  float sum = 0;
  for (int j = 0; j < kSamples; ++j) {
    const double down = (j + 0.5) / kSamples;
    const double leftX = upper[0].x + down * (lower[0].x - upper[0].x);
    const double leftY = upper[0].y + down * (lower[0].y - upper[0].y);
    const double stepX = upper[1].x + down * (lower[1].x - upper[1].x) - leftX;
    const double stepY = upper[1].y + down * (lower[1].y - upper[1].y) - leftY;
    for (int i = 0; i < kSamples; ++i) {
      const double across = (i + 0.5) / kSamples;
      sum += Level(leftX + across * stepX, leftY + across * stepY, background);
    }
  }
  return sum / (kSamples * kSamples);
}

float ChartPainter::Level(double x, double y, float background) const {
  const auto isWithin = [&](int border) {
    return x >= -1 - border && x < chart_.cols + border && y >= -1 - border &&
           y < chart_.rows + border;
  };
  if (!isWithin(kBorderSquares)) {
    return background;
  }
  // Shifted above 0, where the conversion to a whole number rounds down.
  const bool isBlack = (static_cast<int>(x + 1) + static_cast<int>(y + 1)) % 2 == 0;
  return isWithin(0) && isBlack ? kBlack : kWhite;
}

}  // namespace trackedcam::simulator
