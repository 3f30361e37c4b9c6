// What the pixel of a corner depends on besides the pose of the chart: the lens, and the shape of
// the board.

#pragma once

#include <array>
#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"

namespace trackedcam::crosscheck {

/// How a printed board differs from a flat one with square squares.
struct BoardShape {
  double stretch = 0;  // the squares are this fraction wider than high, with the same mean edge
  /// Depth of the board's middle behind its edges along a row and along a column, and of two
  /// opposite corners behind the other two; metres. The four outer corners stay in the plane z = 0
  /// on average.
  double bowAlongRows = 0;
  double bowAlongColumns = 0;
  double warp = 0;
};

struct Board {
  int columns = 0;    // inner corners along a row
  int rows = 0;       // inner corners along a column
  double square = 0;  // edge of a square, as stated; metres
  BoardShape shape;

  /// The inner corners in frame Chart, metres: row by row, columns fastest.
  std::vector<Eigen::Vector3d> Points() const;
};

/// Order of the parameters: fx, fy, cx, cy, k1, k2; p1, p2; k3; stretch; the bow along rows and
/// along columns, and the warp.
constexpr int kLensParameters = 6;
constexpr int kCornerParameters = 13;
using CornerVector = Eigen::Matrix<double, kCornerParameters, 1>;
using CornerMatrix = Eigen::Matrix<double, kCornerParameters, kCornerParameters>;

struct CornerModel {
  Lens lens;
  Board board;

  CornerVector Parameters() const;
  void SetParameters(const CornerVector& values);
};

/// The pixel of a point in front of the camera, given in frame Cam.
Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point);

/// The same with its derivative, pixels per metre.
struct Projection {
  Eigen::Vector2d pixel;
  Eigen::Matrix<double, 2, 3> byPoint;
};
Projection ProjectWithDerivative(const Lens& lens, const Eigen::Vector3d& point);

/// The pixel by fx, fy, cx, cy, k1, k2, p1, p2, k3.
constexpr int kAllLensParameters = 9;
Eigen::Matrix<double, 2, kAllLensParameters> PixelByLens(const Lens& lens,
                                                         const Eigen::Vector3d& point);

/// The corners in frame Chart by the stretch, the bow along rows and along columns, and the warp;
/// one matrix for each corner.
constexpr int kShapeParameters = 4;
std::vector<Eigen::Matrix<double, 3, kShapeParameters>> PointsByShape(const Board& board);

/// The point of the plane z = 1 of frame Cam that has this pixel; nothing beyond the radius at
/// which the distortion folds the image back.
std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel);

}  // namespace trackedcam::crosscheck
