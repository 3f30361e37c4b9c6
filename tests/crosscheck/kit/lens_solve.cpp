#include "crosscheck/kit/lens_solve.h"

#include <Eigen/Cholesky>

namespace trackedcam::test {
namespace {

using crosscheck::Matrix6d;
using crosscheck::Pose;
using crosscheck::Twist;

using Columns = Eigen::Matrix<double, Eigen::Dynamic, 6>;
using Parameters = Eigen::Matrix<double, 6, 1>;  // fx, fy, cx, cy, k1, k2

simulator::Lens LensOf(const Parameters& f) {
  return {f[0], f[1], f[2], f[3], f[4], f[5]};
}

Eigen::VectorXd PixelsOf(const Parameters& lens, const Pose& pose,
                         const std::vector<Eigen::Vector3d>& board) {
  Eigen::VectorXd pixels(2 * static_cast<Eigen::Index>(board.size()));
  for (std::size_t i = 0; i < board.size(); ++i) {
    pixels.segment<2>(2 * static_cast<Eigen::Index>(i)) = LensOf(lens).Project(pose * board[i]);
  }
  return pixels;
}

struct View {
  Columns byPose;
  Columns byLens;
  Eigen::VectorXd residual;
};

View ViewAt(const Parameters& lens, const Pose& pose, const std::vector<Eigen::Vector3d>& board,
            const crosscheck::Photograph& photograph) {
  const Parameters steps = (Parameters() << 1e-2, 1e-2, 1e-2, 1e-2, 1e-5, 1e-5).finished();
  View view;
  view.residual = -PixelsOf(lens, pose, board);
  for (std::size_t i = 0; i < board.size(); ++i) {
    view.residual.segment<2>(2 * static_cast<Eigen::Index>(i)) += photograph.corners[i];
  }
  view.byPose.resize(view.residual.size(), 6);
  view.byLens.resize(view.residual.size(), 6);
  for (int k = 0; k < 6; ++k) {
    const Parameters lensStep = steps[k] * Parameters::Unit(k);
    const Twist poseStep = 1e-6 * Twist::Unit(k);
    view.byLens.col(k) =
        (PixelsOf(lens + lensStep, pose, board) - PixelsOf(lens - lensStep, pose, board)) /
        (2 * steps[k]);
    view.byPose.col(k) = (PixelsOf(lens, crosscheck::Exp(poseStep) * pose, board) -
                          PixelsOf(lens, crosscheck::Exp(-poseStep) * pose, board)) /
                         2e-6;
  }
  return view;
}

}  // namespace

simulator::Lens SolveLens(simulator::Lens lens, std::vector<Pose> Transform_Cam_Chart,
                          const std::vector<Eigen::Vector3d>& board,
                          const std::vector<crosscheck::Photograph>& photographs) {
  constexpr int kMostSteps = 10;
  Parameters values =
      (Parameters() << lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2).finished();
  for (int step = 0; step < kMostSteps; ++step) {
    std::vector<View> views;
    Matrix6d normal = Matrix6d::Zero();
    Parameters right = Parameters::Zero();
    for (std::size_t i = 0; i < photographs.size(); ++i) {
      views.push_back(ViewAt(values, Transform_Cam_Chart[i], board, photographs[i]));
      const View& view = views.back();
      // What the pose can follow says nothing of the lens.
      const Eigen::LDLT<Matrix6d> pose(view.byPose.transpose() * view.byPose);
      const Columns left =
          view.byLens - view.byPose * pose.solve(view.byPose.transpose() * view.byLens);
      normal += left.transpose() * view.byLens;
      right += left.transpose() * view.residual;
    }
    const Parameters change = normal.ldlt().solve(right);
    values += change;
    for (std::size_t i = 0; i < views.size(); ++i) {
      const Columns& byPose = views[i].byPose;
      const Twist twist =
          (byPose.transpose() * byPose)
              .ldlt()
              .solve(byPose.transpose() * (views[i].residual - views[i].byLens * change));
      Transform_Cam_Chart[i] = crosscheck::Exp(twist) * Transform_Cam_Chart[i];
    }
    if (change.head<4>().norm() < 1e-4 && change.tail<2>().norm() < 1e-8) {
      break;
    }
  }
  return LensOf(values);
}

}  // namespace trackedcam::test
