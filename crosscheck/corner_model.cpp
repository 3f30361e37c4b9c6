#include "crosscheck/corner_model.h"

#include <cmath>
#include <cstddef>

namespace trackedcam::crosscheck {
namespace {

double Stretch(const Lens& lens, double r2) {
  return 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
}

Eigen::Vector2d Tangential(const Lens& lens, const Eigen::Vector2d& ray) {
  const double r2 = ray.squaredNorm();
  const double xy = 2 * ray.x() * ray.y();
  return {lens.p1 * xy + lens.p2 * (r2 + 2 * ray.x() * ray.x()),
          lens.p1 * (r2 + 2 * ray.y() * ray.y()) + lens.p2 * xy};
}

// The radius of a ray that the radial distortion moves to this one.
std::optional<double> UndistortedRadius(const Lens& lens, double distorted) {
  double radius = distorted;
  for (int step = 0; step < 30; ++step) {
    const double r2 = radius * radius;
    const double slope = 1 + r2 * (3 * lens.k1 + r2 * (5 * lens.k2 + r2 * 7 * lens.k3));
    if (!(slope > 0.05)) {
      return std::nullopt;
    }
    const double change = (radius * Stretch(lens, r2) - distorted) / slope;
    radius -= change;
    if (std::abs(change) < 1e-12) {
      return radius;
    }
  }
  return std::nullopt;
}

// Where a corner is on the board: -1 to 1 from the first to the last.
double Along(int index, int count) {
  return 2.0 * index / (count - 1) - 1;
}

}  // namespace

std::vector<Eigen::Vector3d> Board::Points() const {
  std::vector<Eigen::Vector3d> points;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      const double x = Along(c, columns);
      const double y = Along(r, rows);
      points.emplace_back(c * square * (1 + 0.5 * shape.stretch),
                          r * square * (1 - 0.5 * shape.stretch),
                          shape.bowAlongRows * (1 - x * x) + shape.bowAlongColumns * (1 - y * y) +
                              shape.warp * x * y);
    }
  }
  return points;
}

CornerVector CornerModel::Parameters() const {
  const BoardShape& shape = board.shape;
  CornerVector values;
  values << lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2, lens.p1, lens.p2, lens.k3,
      shape.stretch, shape.bowAlongRows, shape.bowAlongColumns, shape.warp;
  return values;
}

void CornerModel::SetParameters(const CornerVector& values) {
  lens.fx = values[0];
  lens.fy = values[1];
  lens.cx = values[2];
  lens.cy = values[3];
  lens.k1 = values[4];
  lens.k2 = values[5];
  lens.p1 = values[6];
  lens.p2 = values[7];
  lens.k3 = values[8];
  board.shape = {values[9], values[10], values[11], values[12]};
}

Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point) {
  const Eigen::Vector2d ray(point.x() / point.z(), point.y() / point.z());
  const double stretch = Stretch(lens, ray.squaredNorm());
  const Eigen::Vector2d tangential = Tangential(lens, ray);
  return {lens.fx * (stretch * ray.x() + tangential.x()) + lens.cx,
          lens.fy * (stretch * ray.y() + tangential.y()) + lens.cy};
}

Projection ProjectWithDerivative(const Lens& lens, const Eigen::Vector3d& point) {
  const double depth = 1 / point.z();
  const double x = point.x() * depth;
  const double y = point.y() * depth;
  const double r2 = x * x + y * y;
  const double stretch = Stretch(lens, r2);
  // Twice the derivative of the stretch by r2.
  const double growth = 2 * (lens.k1 + r2 * (2 * lens.k2 + r2 * 3 * lens.k3));
  const Eigen::Vector2d tangential = Tangential(lens, {x, y});

  Projection projection;
  projection.pixel = {lens.fx * (stretch * x + tangential.x()) + lens.cx,
                      lens.fy * (stretch * y + tangential.y()) + lens.cy};
  const double across = growth * x * y + 2 * (lens.p1 * x + lens.p2 * y);
  Eigen::Matrix2d byRay;
  byRay << lens.fx * (stretch + growth * x * x + 2 * lens.p1 * y + 6 * lens.p2 * x),
      lens.fx * across, lens.fy * across,
      lens.fy * (stretch + growth * y * y + 6 * lens.p1 * y + 2 * lens.p2 * x);
  projection.byPoint.leftCols<2>() = byRay * depth;
  projection.byPoint.col(2) = byRay * Eigen::Vector2d(-x, -y) * depth;
  return projection;
}

Eigen::Matrix<double, 2, kAllLensParameters> PixelByLens(const Lens& lens,
                                                         const Eigen::Vector3d& point) {
  const double x = point.x() / point.z();
  const double y = point.y() / point.z();
  const double r2 = x * x + y * y;
  const double stretch = Stretch(lens, r2);
  const Eigen::Vector2d tangential = Tangential(lens, {x, y});
  Eigen::Matrix<double, 2, kAllLensParameters> byLens;
  byLens << stretch * x + tangential.x(), 0, 1, 0, lens.fx * x * r2, lens.fx * x * r2 * r2,
      lens.fx * 2 * x * y, lens.fx * (r2 + 2 * x * x), lens.fx * x * r2 * r2 * r2,  //
      0, stretch * y + tangential.y(), 0, 1, lens.fy * y * r2, lens.fy * y * r2 * r2,
      lens.fy * (r2 + 2 * y * y), lens.fy * 2 * x * y, lens.fy * y * r2 * r2 * r2;
  return byLens;
}

std::vector<Eigen::Matrix<double, 3, kShapeParameters>> PointsByShape(const Board& board) {
  std::vector<Eigen::Matrix<double, 3, kShapeParameters>> all;
  for (int r = 0; r < board.rows; ++r) {
    for (int c = 0; c < board.columns; ++c) {
      const double x = Along(c, board.columns);
      const double y = Along(r, board.rows);
      Eigen::Matrix<double, 3, kShapeParameters> byShape;
      byShape << 0.5 * c * board.square, 0, 0, 0,  //
          -0.5 * r * board.square, 0, 0, 0,        //
          0, 1 - x * x, 1 - y * y, x * y;
      all.push_back(byShape);
    }
  }
  return all;
}

std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel) {
  const Eigen::Vector2d seen((pixel.x() - lens.cx) / lens.fx, (pixel.y() - lens.cy) / lens.fy);
  Eigen::Vector2d ray = seen;
  for (int step = 0; step < 30; ++step) {
    const Eigen::Vector2d radial = seen - Tangential(lens, ray);
    const double wanted = radial.norm();
    const std::optional<double> radius = UndistortedRadius(lens, wanted);
    if (!radius) {
      return std::nullopt;
    }
    const Eigen::Vector2d before = ray;
    ray = wanted > 0 ? Eigen::Vector2d(radial * (*radius / wanted)) : radial;
    if ((ray - before).norm() < 1e-12 || (lens.p1 == 0 && lens.p2 == 0)) {
      return ray;
    }
  }
  return std::nullopt;
}

}  // namespace trackedcam::crosscheck
