// Paints the chart into a picture as the lens sees it.

#pragma once

#include <utility>
#include <vector>

#include <Eigen/Geometry>
#include <opencv2/core.hpp>

#include "simulator/chart.h"
#include "simulator/lens.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {

class ChartPainter {
 public:
  ChartPainter(const Chart& chart, const Lens& lens, int imageWidth, int imageHeight);

  /// Each pixel of the picture (CV_32F, grey levels) gets the mean of what its area sees.
  void Paint(cv::Mat& picture, const Eigen::Isometry3d& Transform_Cam_Chart) const;

 private:
  struct Point {
    double x, y;
  };

  // A corner of a pixel on the chart.
  struct ChartPoint {
    double x, y;  // in squares; (0, 0) is the chart's first inner corner
    int cell;     // two points of one cell have one colour between them
  };

  cv::Rect PaintedArea(const Eigen::Isometry3d& Transform_Cam_Chart) const;
  void ToChart(const Eigen::Matrix3d& homography, const Point* rays,
               std::vector<ChartPoint>& points) const;
  float MeanLevel(const ChartPoint* upper, const ChartPoint* lower, float background) const;
  float Level(double x, double y, float background) const;

  Chart chart_;
  Lens lens_;
  cv::Size size_;
  // Where the corners of the pixels look, in the plane z = 1 of frame Cam: the lens is the same in
  // each photograph.
  std::vector<Point> rays_;
};

// Makes the pictures of a shoot.

/// Sees the shoot it was made for, which must outlive it.
class PhotographRenderer {
 public:
  explicit PhotographRenderer(const Shoot& shoot);

  /// A grey picture (CV_8U). It depends on the shoot and the index only, not on what was rendered
  /// before.
  cv::Mat Render(int index) const;

 private:
  const Shoot& shoot_;
  ChartPainter painter_;
};

}  // namespace trackedcam::simulator
