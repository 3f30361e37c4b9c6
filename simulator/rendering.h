// The photographs of a simulated shoot, and the frames of a recording.

#pragma once

#include <utility>
#include <vector>

#include <Eigen/Geometry>
#include <opencv2/core.hpp>

#include "simulator/chart.h"
#include "simulator/lens.h"
#include "simulator/recording.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// Paints the chart into an image as the lens projects it.
class ChartPainter {
 public:
  ChartPainter(const Chart& chart, const Lens& lens, int imageWidth, int imageHeight);

  /// Sets each pixel in these rows that sees the paper (CV_32F, grey levels) to the mean over its
  /// area.
  void Paint(cv::Mat& picture, const Eigen::Isometry3d& Transform_Cam_Chart,
             cv::Range rows = cv::Range::all()) const;

 private:
  struct Point {
    double x, y;
  };

  // The point on the chart that a corner of a pixel sees.
  struct ChartPoint {
    double x, y;  // in squares; (0, 0) is the chart's first inner corner
    int cell;     // between two points of the same cell the colour is the same
  };

  cv::Rect PaintedArea(const Eigen::Isometry3d& Transform_Cam_Chart) const;
  void ToChart(const Eigen::Matrix3d& homography, const Eigen::Vector3d& perMetre,
               const Point* rays, std::vector<ChartPoint>& points) const;
  float MeanLevel(const ChartPoint* upper, const ChartPoint* lower, float background) const;
  float Level(double x, double y, float background) const;

  Chart chart_;
  Lens lens_;
  cv::Size size_;
  // The rays of the corners of all pixels, in the plane z = 1 of frame Cam. Computed once, because
  // the lens is the same in each photograph.
  std::vector<Point> rays_;
};

/// Renders the photographs of a shoot. The shoot must outlive the renderer.
class PhotographRenderer {
 public:
  explicit PhotographRenderer(const Shoot& shoot);

  /// A grey image (CV_8U). It depends on the shoot and the index only, not on earlier calls.
  cv::Mat Render(int index) const;

 private:
  void Expose(cv::Mat& picture, int index) const;

  const Shoot& shoot_;
  ChartPainter painter_;
};

/// Renders the frames of a recording: blurred by the motion during their exposure, and with a
/// rolling shutter if it has one. The recording must outlive the renderer.
class FrameRenderer {
 public:
  explicit FrameRenderer(const Recording& recording);

  /// A grey image (CV_8U). It depends on the recording and the index only, not on earlier calls.
  cv::Mat Render(int index) const;

 private:
  cv::Mat Exposed(double frameTime) const;
  double PixelsWithin(double frameTime, double seconds) const;

  const Recording& recording_;
  Path path_;
  ChartPainter painter_;
  cv::Mat background_;
};

}  // namespace trackedcam::simulator
