#include "crosscheck/chart_pose.h"

#include <cmath>
#include <cstddef>

#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

// From the board's plane to the plane z = 1 of frame Cam, by the direct linear transform.
std::optional<Eigen::Matrix3d> Homography(const Lens& lens,
                                          const std::vector<Eigen::Vector3d>& board,
                                          const std::vector<Eigen::Vector2d>& corners) {
  // Scaled to about 1, which keeps the equations well conditioned.
  const Eigen::Vector2d centre = 0.5 * (board.front() + board.back()).head<2>();
  const double size = (board.back() - board.front()).norm();
  Matrix9d normal = Matrix9d::Zero();
  for (std::size_t i = 0; i < board.size(); ++i) {
    const std::optional<Eigen::Vector2d> ray = Ray(lens, corners[i]);
    if (!ray) {
      return std::nullopt;
    }
    const Eigen::Vector3d point = ((board[i].head<2>() - centre) / size).homogeneous();
    Eigen::Matrix<double, 2, 9> rows = Eigen::Matrix<double, 2, 9>::Zero();
    rows.block<1, 3>(0, 0) = point.transpose();
    rows.block<1, 3>(0, 6) = -ray->x() * point.transpose();
    rows.block<1, 3>(1, 3) = point.transpose();
    rows.block<1, 3>(1, 6) = -ray->y() * point.transpose();
    normal += rows.transpose().lazyProduct(rows);
  }
  const std::optional<Matrix9d> eigenvectors = Eigenvectors(normal);
  if (!eigenvectors) {
    return std::nullopt;
  }
  const Eigen::Matrix<double, 9, 1> h = eigenvectors->col(0);
  Eigen::Matrix3d homography;
  homography << h.head<3>().transpose(), h.segment<3>(3).transpose(), h.tail<3>().transpose();
  Eigen::Matrix3d toUnits;
  toUnits << 1 / size, 0, -centre.x() / size, 0, 1 / size, -centre.y() / size, 0, 0, 1;
  return homography * toUnits;
}

std::optional<Pose> PoseOfHomography(Eigen::Matrix3d homography) {
  const double length = std::sqrt(homography.col(0).norm() * homography.col(1).norm());
  if (!(length > 0)) {
    return std::nullopt;
  }
  homography /= homography(2, 2) < 0 ? -length : length;
  Eigen::Matrix3d axes;
  axes << homography.col(0), homography.col(1), homography.col(0).cross(homography.col(1));
  Pose pose = Pose::Identity();
  pose.linear() = NearestRotation(axes);
  pose.translation() = homography.col(2);
  return pose;
}

}  // namespace

std::vector<Eigen::Vector3d> BoardPoints(int columns, int rows, double square) {
  std::vector<Eigen::Vector3d> points;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      points.emplace_back(c * square, r * square, 0);
    }
  }
  return points;
}

Pose ReversedBoard(const std::vector<Eigen::Vector3d>& board) {
  Pose pose(RotationAbout(2, 180));
  pose.translation() = board.back();
  return pose;
}

Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point) {
  const double x = point.x() / point.z();
  const double y = point.y() / point.z();
  const double r2 = x * x + y * y;
  const double stretch = 1 + r2 * (lens.k1 + r2 * lens.k2);
  return {lens.fx * stretch * x + lens.cx, lens.fy * stretch * y + lens.cy};
}

Projection ProjectWithDerivatives(const Lens& lens, const Eigen::Vector3d& point) {
  const double depth = 1 / point.z();
  const double x = point.x() * depth;
  const double y = point.y() * depth;
  const double r2 = x * x + y * y;
  const double stretch = 1 + r2 * (lens.k1 + r2 * lens.k2);
  const double growth = 2 * (lens.k1 + 2 * r2 * lens.k2);  // twice the derivative of stretch by r2

  Projection projection;
  projection.pixel = {lens.fx * stretch * x + lens.cx, lens.fy * stretch * y + lens.cy};

  Eigen::Matrix2d byRay;
  byRay << lens.fx * (stretch + growth * x * x), lens.fx * growth * x * y, lens.fy * growth * x * y,
      lens.fy * (stretch + growth * y * y);
  projection.byPoint.leftCols<2>() = byRay * depth;
  projection.byPoint.col(2) = byRay * Eigen::Vector2d(-x, -y) * depth;

  projection.byLens << stretch * x, 0, 1, 0, lens.fx * x * r2, lens.fx * x * r2 * r2,  //
      0, stretch * y, 0, 1, lens.fy * y * r2, lens.fy * y * r2 * r2;
  return projection;
}

std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel) {
  const Eigen::Vector2d seen((pixel.x() - lens.cx) / lens.fx, (pixel.y() - lens.cy) / lens.fy);
  const double wanted = seen.norm();
  double radius = wanted;
  for (int step = 0; step < 30; ++step) {
    const double r2 = radius * radius;
    const double slope = 1 + r2 * (3 * lens.k1 + r2 * 5 * lens.k2);
    if (!(slope > 0.05)) {
      return std::nullopt;
    }
    const double change = (radius * (1 + r2 * (lens.k1 + r2 * lens.k2)) - wanted) / slope;
    radius -= change;
    if (std::abs(change) < 1e-12) {
      return wanted > 0 ? Eigen::Vector2d(seen * (radius / wanted)) : seen;
    }
  }
  return std::nullopt;
}

std::optional<CornerEquations> EquationsAt(const Pose& Transform_Cam_Chart, const Lens& lens,
                                           const std::vector<Eigen::Vector3d>& board,
                                           const std::vector<Eigen::Vector2d>& corners) {
  Eigen::Matrix<double, 12, 12> normal = Eigen::Matrix<double, 12, 12>::Zero();
  CornerEquations equations;
  equations.towards.setZero();
  for (std::size_t i = 0; i < board.size(); ++i) {
    const Eigen::Vector3d point = Transform_Cam_Chart * board[i];
    if (!(point.z() > 1e-6)) {
      return std::nullopt;
    }
    const Projection seen = ProjectWithDerivatives(lens, point);
    Eigen::Matrix<double, 2, 12> rows;
    rows.leftCols<3>() = -seen.byPoint * Cross(point);
    rows.middleCols<3>(3) = seen.byPoint;
    rows.rightCols<6>() = seen.byLens;
    const Eigen::Vector2d residual = corners[i] - seen.pixel;
    normal += rows.transpose().lazyProduct(rows);
    equations.towards.noalias() += rows.leftCols<6>().transpose() * residual;
    equations.squares += residual.squaredNorm();
  }
  equations.byPose = normal.topLeftCorner<6, 6>();
  equations.byPoseLens = normal.topRightCorner<6, 6>();
  equations.byLens = normal.bottomRightCorner<6, 6>();
  return equations;
}

std::optional<ChartPose> FindChartPose(const Lens& lens, const std::vector<Eigen::Vector3d>& board,
                                       const std::vector<Eigen::Vector2d>& corners) {
  const std::optional<Eigen::Matrix3d> homography = Homography(lens, board, corners);
  std::optional<Pose> pose;
  if (homography && homography->allFinite()) {
    pose = PoseOfHomography(*homography);
  }
  if (!pose) {
    return std::nullopt;
  }
  std::optional<CornerEquations> equations = EquationsAt(*pose, lens, board, corners);
  for (int step = 0; step < 20 && equations; ++step) {
    const Ldlt solver(equations->byPose);
    Twist change = solver.Solve(equations->towards);
    if (!change.allFinite() || solver.SmallestPivot() <= 0) {
      return std::nullopt;
    }
    // Halved until the corners fit no worse than before.
    std::optional<CornerEquations> nearer;
    for (int halving = 0; halving < 8; ++halving, change *= 0.5) {
      const Pose tried = Exp(change) * *pose;
      nearer = EquationsAt(tried, lens, board, corners);
      if (nearer && nearer->squares <= equations->squares) {
        pose = tried;
        break;
      }
      nearer.reset();
    }
    if (!nearer) {
      break;  // the fit is at the limit of rounding
    }
    equations = nearer;
    if (change.norm() < 1e-9) {
      break;
    }
  }
  if (!equations || !std::isfinite(equations->squares)) {
    return std::nullopt;
  }
  return ChartPose{*pose, *equations};
}

}  // namespace trackedcam::crosscheck
