#include "simulator/chart.h"

namespace trackedcam::simulator {

std::vector<Eigen::Vector3d> Chart::Corners() const {
  std::vector<Eigen::Vector3d> corners;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      corners.emplace_back(col * squareMetres, row * squareMetres, 0);
    }
  }
  return corners;
}

std::vector<Eigen::Vector3d> Chart::PaperOutline() const {
  constexpr int kSteps = 16;
  const Eigen::Vector3d right(PaperSize().x() / 2, 0, 0);
  const Eigen::Vector3d down(0, PaperSize().y() / 2, 0);
  std::vector<Eigen::Vector3d> outline;
  for (int step = 0; step < kSteps; ++step) {
    const double along = 2.0 * step / kSteps - 1;
    for (const double side : {-1, 1}) {
      outline.emplace_back(Centre() + side * (along * right + down));
      outline.emplace_back(Centre() + side * (right - along * down));
    }
  }
  return outline;
}

Eigen::Vector3d Chart::Centre() const {
  return Eigen::Vector3d(cols - 1, rows - 1, 0) * (squareMetres / 2);
}

Eigen::Vector2d Chart::PaperSize() const {
  return Eigen::Vector2d(cols + 1 + 2 * kBorderSquares, rows + 1 + 2 * kBorderSquares) *
         squareMetres;
}

}  // namespace trackedcam::simulator
