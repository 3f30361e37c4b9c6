#include "crosscheck/solution.h"

#include <algorithm>

namespace trackedcam::crosscheck {
namespace {

bool IsAfterStep(const Solution& solution, std::size_t index) {
  return solution.sought.step && index >= solution.sought.before;
}

}  // namespace

std::size_t Solution::Used() const {
  return static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
}

int CountUnknowns(const Sought& sought) {
  return 6 + (sought.mounting ? 6 : 0) + (sought.squareSize ? 1 : 0) + (sought.step ? 6 : 0);
}

Pose Transform_Cam_Tc_At(const Solution& solution, std::size_t index) {
  return IsAfterStep(solution, index) && *solution.sought.step == Tracker::kCamera
             ? solution.Transform_Cam_Tc * solution.step
             : solution.Transform_Cam_Tc;
}

Pose Predicted(const Loop& loop, std::size_t index, const Solution& solution) {
  const Pose Transform_Cam_Tr = Transform_Cam_Tc_At(solution, index) * loop.Transform_Tc_Tr;
  return IsAfterStep(solution, index) && *solution.sought.step == Tracker::kChart
             ? Transform_Cam_Tr * solution.step * solution.Transform_Tr_Chart
             : Transform_Cam_Tr * solution.Transform_Tr_Chart;
}

Twist Residual(const Loop& loop, std::size_t index, const Solution& solution) {
  Pose seen = loop.Transform_Cam_Chart;
  seen.translation() *= solution.squareFactor;
  return Log(seen * Predicted(loop, index, solution).inverse());
}

Design DesignOf(const Loop& loop, std::size_t index, const Solution& solution) {
  const Sought& sought = solution.sought;
  Design design = Design::Zero(6, CountUnknowns(sought));
  design.leftCols<6>().setIdentity();
  Eigen::Index next = 6;
  if (sought.mounting) {
    design.middleCols<6>(next) = Adjoint(Predicted(loop, index, solution));
    next += 6;
  }
  if (sought.squareSize) {
    design.col(next).tail<3>() = -loop.Transform_Cam_Chart.translation();
    next += 1;
  }
  if (IsAfterStep(solution, index)) {
    design.middleCols<6>(next) = Adjoint(*sought.step == Tracker::kCamera
                                             ? solution.Transform_Cam_Tc
                                             : solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  }
  return design;
}

Matrix6d CovarianceOf(const Loop& loop, const Solution& solution, const Noise& noise) {
  const NoiseCarriers carriers =
      CarriersOf(solution.Transform_Cam_Tc, solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  return noise.turn * carriers.turn + noise.shift * carriers.shift + loop.cornerCovariance;
}

}  // namespace trackedcam::crosscheck
