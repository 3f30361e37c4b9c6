#include "simulator/chart.h"

namespace trackedcam::simulator {

// A paraboloid: paper on a board that sags, or on one that is glued too tightly.
double Chart::Depth(double x, double y) const {
  const double right = 2 * x / (cols - 1) - 1;
  const double down = 2 * y / (rows - 1) - 1;
  return bowMetres * (1 - (right * right + down * down) / 2);
}

Eigen::Vector3d Chart::At(double x, double y) const {
  return {x * squareMetres * (1 + stretch), y * squareMetres, Depth(x, y)};
}

std::vector<Eigen::Vector3d> Chart::Corners() const {
  std::vector<Eigen::Vector3d> corners;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      corners.push_back(At(col, row));
    }
  }
  return corners;
}

std::vector<Eigen::Vector3d> Chart::PaperOutline() const {
  constexpr int kSteps = 16;
  const double middleX = (cols - 1) / 2.0;
  const double middleY = (rows - 1) / 2.0;
  const double halfWidth = middleX + 1 + kBorderSquares;
  const double halfHeight = middleY + 1 + kBorderSquares;
  std::vector<Eigen::Vector3d> outline;
  for (int step = 0; step < kSteps; ++step) {
    const double along = 2.0 * step / kSteps - 1;
    for (const double side : {-1, 1}) {
      outline.push_back(At(middleX + side * along * halfWidth, middleY + side * halfHeight));
      outline.push_back(At(middleX + side * halfWidth, middleY - side * along * halfHeight));
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
