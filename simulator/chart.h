// The printed chessboard: its squares with a white border around them.

#pragma once

#include <vector>

#include <Eigen/Core>

namespace trackedcam::simulator {

struct Chart {
  int cols = 9;                // inner corners along a row
  int rows = 6;                // inner corners along a column
  double squareMetres = 0.03;  // edge of a square, as stated
  double stretch = 0;          // the squares are this fraction wider than high
  double bowMetres = 0;        // the middle is this far behind the four outermost inner corners

  /// The point at x, y squares from the first inner corner, in frame Chart, metres.
  Eigen::Vector3d At(double x, double y) const;

  /// How far it is behind the plane of the four outermost inner corners, metres.
  double Depth(double x, double y) const;

  /// The inner corners in frame Chart, metres, row by row.
  std::vector<Eigen::Vector3d> Corners() const;

  /// Points along the edge of the paper in frame Chart, metres, dense enough for a distorted edge.
  std::vector<Eigen::Vector3d> PaperOutline() const;

  /// The centre of the paper in frame Chart, and its width and height, metres, as stated.
  Eigen::Vector3d Centre() const;
  Eigen::Vector2d PaperSize() const;
};

/// Width of the white border, in squares.
constexpr int kBorderSquares = 1;

}  // namespace trackedcam::simulator
