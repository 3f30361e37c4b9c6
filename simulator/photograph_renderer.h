// Makes the pictures of a shoot.

#pragma once

#include <opencv2/core.hpp>

#include "simulator/chart_painter.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {

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
