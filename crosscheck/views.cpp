#include "crosscheck/views.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

#include "crosscheck/photographs.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kDegree = EIGEN_PI / 180;
constexpr int kViewsAtOnce = 4;
constexpr int kSuggestions = 3;

using Normal = Eigen::Matrix<double, 12, 12>;

struct Candidate {
  View view;
  Normal information;  // of one such photograph
};

// The board's middle on the optical axis, turned in the picture, then tilted to face a direction.
Pose PoseOfView(const View& view, const Eigen::Vector3d& middle) {
  const double direction = view.tiltDirectionDegrees * kDegree;
  // Facing the right of the picture is a turn about the vertical.
  const Eigen::Vector3d axis(std::sin(direction), -std::cos(direction), 0);
  const Eigen::Matrix3d rotation =
      (Eigen::AngleAxisd(view.tiltDegrees * kDegree, axis) *
       Eigen::AngleAxisd(view.rollDegrees * kDegree, Eigen::Vector3d::UnitZ()))
          .toRotationMatrix();
  Pose pose(rotation);
  pose.translation() = Eigen::Vector3d(0, 0, view.distanceMetres) - rotation * middle;
  return pose;
}

double MedianDistance(const Loops& loops, const Eigen::Vector3d& middle) {
  std::vector<double> distances;
  for (const Loop& loop : loops) {
    distances.push_back((loop.Transform_Cam_Chart * middle).norm());
  }
  const auto half = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), half, distances.end());
  return *half;
}

Candidate CandidateOf(const View& view, const Evidence& evidence, const Solution& solution,
                      const Eigen::Vector3d& middle) {
  Loop loop = evidence.loops.front();  // its corners' noise serves: trackers are noisier by far
  loop.Transform_Cam_Chart = PoseOfView(view, middle);
  loop.Transform_Tc_Tr = solution.Transform_Cam_Tc.inverse() * loop.Transform_Cam_Chart *
                         solution.Transform_Tr_Chart.inverse();
  const Design design = DesignOf(loop, 0, solution);
  const Matrix6d weight =
      CovarianceOf(loop, solution).llt().solve(Matrix6d::Identity());
  return {view, design.transpose() * weight * design};
}

// Within what is easily shot, and at which the first corner is still found first.
std::vector<Candidate> Candidates(const Evidence& evidence, const Solution& solution) {
  const Eigen::Vector3d middle = 0.5 * (evidence.board.front() + evidence.board.back());
  const double usual = MedianDistance(evidence.loops, middle);
  std::vector<Candidate> all;
  for (const double tilt : {20.0, 40.0}) {
    for (int direction = -135; direction <= 180; direction += 45) {
      for (const double roll : {-30.0, 0.0, 30.0}) {
        for (const double distance : {0.8 * usual, usual, 1.3 * usual}) {
          const View view = {tilt, static_cast<double>(direction), roll, distance};
          all.push_back(CandidateOf(view, evidence, solution, middle));
        }
      }
    }
  }
  return all;
}

// Of Transform_Cam_Tc, turns and shifts in one figure: what both do at the chart.
double Uncertainty(const Normal& covariance, double distance) {
  return std::sqrt(distance * distance * covariance.topLeftCorner<3, 3>().trace() +
                   covariance.block<3, 3>(3, 3).trace());
}

Normal Inverse(const Normal& normal) {
  return normal.ldlt().solve(Normal::Identity());
}

}  // namespace

std::vector<SuggestedView> SuggestViews(const Evidence& evidence, const Solution& solution) {
  if (evidence.loops.empty() || solution.covariance.rows() != 12) {
    return {};
  }
  const std::vector<Candidate> candidates = Candidates(evidence, solution);
  const double distance = candidates.front().view.distanceMetres;
  Normal information = Inverse(solution.covariance);
  std::vector<SuggestedView> views;
  while (views.size() < kSuggestions) {
    const double before = Uncertainty(Inverse(information), distance);
    const Candidate* best = nullptr;
    double least = before;
    for (const Candidate& candidate : candidates) {
      const double after =
          Uncertainty(Inverse(information + kViewsAtOnce * candidate.information), distance);
      if (after < least) {
        least = after;
        best = &candidate;
      }
    }
    if (best == nullptr) {
      break;
    }
    SuggestedView view;
    static_cast<View&>(view) = best->view;
    view.views = kViewsAtOnce;
    view.gain = before / least;
    views.push_back(view);
    information += kViewsAtOnce * best->information;
  }
  return views;
}

}  // namespace trackedcam::crosscheck
