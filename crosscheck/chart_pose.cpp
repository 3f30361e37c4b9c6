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

PixelByTwist ByTwist(const Projection& seen, const Eigen::Vector3d& point) {
  PixelByTwist rows;
  rows << -seen.byPoint * Cross(point), seen.byPoint;
  return rows;
}

Pose ReversedBoard(const std::vector<Eigen::Vector3d>& board) {
  Pose pose(RotationAbout(2, 180));
  pose.translation() = board.back();
  return pose;
}

std::optional<PoseEquations> EquationsAt(const Pose& Transform_Cam_Chart, const Lens& lens,
                                         const std::vector<Eigen::Vector3d>& board,
                                         const std::vector<Eigen::Vector2d>& corners) {
  PoseEquations equations;
  equations.byPose.setZero();
  equations.towards.setZero();
  for (std::size_t i = 0; i < board.size(); ++i) {
    const Eigen::Vector3d point = Transform_Cam_Chart * board[i];
    if (!(point.z() > 1e-6)) {
      return std::nullopt;
    }
    const Projection seen = ProjectWithDerivative(lens, point);
    const PixelByTwist rows = ByTwist(seen, point);
    const Eigen::Vector2d residual = corners[i] - seen.pixel;
    equations.byPose += rows.transpose().lazyProduct(rows);
    equations.towards.noalias() += rows.transpose() * residual;
    equations.squares += residual.squaredNorm();
  }
  return equations;
}

std::optional<ChartPose> FindChartPose(const Lens& lens, const std::vector<Eigen::Vector3d>& board,
                                       const std::vector<Eigen::Vector2d>& corners) {
  const std::optional<Eigen::Matrix3d> homography = Homography(lens, board, corners);
  std::optional<Pose> pose;
  if (homography && homography->allFinite()) {
    pose = PoseOfHomography(*homography);
  }
  return pose ? RefineChartPose(*pose, lens, board, corners) : std::nullopt;
}

std::optional<ChartPose> RefineChartPose(const Pose& Transform_Cam_Chart, const Lens& lens,
                                         const std::vector<Eigen::Vector3d>& board,
                                         const std::vector<Eigen::Vector2d>& corners) {
  Pose pose = Transform_Cam_Chart;
  std::optional<PoseEquations> equations = EquationsAt(pose, lens, board, corners);
  for (int step = 0; step < 20 && equations; ++step) {
    const Ldlt solver(equations->byPose);
    Twist change = solver.Solve(equations->towards);
    if (!change.allFinite() || solver.SmallestPivot() <= 0) {
      return std::nullopt;
    }
    // Halved until the corners fit no worse than before.
    std::optional<PoseEquations> nearer;
    for (int halving = 0; halving < 8; ++halving, change *= 0.5) {
      const Pose tried = Exp(change) * pose;
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
  return ChartPose{pose, *equations};
}

ModelEquations ModelEquationsAt(const ChartPose& pose, const CornerModel& model,
                                const std::vector<Eigen::Vector2d>& corners) {
  const std::vector<Eigen::Vector3d> board = model.board.Points();
  const auto byShape = PointsByShape(model.board);
  Eigen::Matrix<double, 6, kCornerParameters> byBoth =
      Eigen::Matrix<double, 6, kCornerParameters>::Zero();
  ModelEquations equations;
  equations.information.setZero();
  equations.towards.setZero();
  for (std::size_t i = 0; i < board.size(); ++i) {
    const Eigen::Vector3d point = pose.Transform_Cam_Chart * board[i];
    const Projection seen = ProjectWithDerivative(model.lens, point);
    const PixelByTwist byPose = ByTwist(seen, point);
    Eigen::Matrix<double, 2, kCornerParameters> rows;
    rows << PixelByLens(model.lens, point),
        seen.byPoint * pose.Transform_Cam_Chart.linear() * byShape[i];
    equations.information += rows.transpose().lazyProduct(rows);
    equations.towards += rows.transpose() * (corners[i] - seen.pixel);
    byBoth += byPose.transpose().lazyProduct(rows);
  }
  const Ldlt solver(pose.equations.byPose);
  for (Eigen::Index k = 0; k < kCornerParameters; ++k) {
    equations.pose.col(k) = -solver.Solve(Twist(byBoth.col(k)));
  }
  equations.information += byBoth.transpose() * equations.pose;
  equations.towards += equations.pose.transpose() * pose.equations.towards;
  return equations;
}

}  // namespace trackedcam::crosscheck
