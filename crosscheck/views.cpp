#include "crosscheck/views.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <Eigen/Cholesky>

#include "crosscheck/chart_pose.h"
#include "crosscheck/symmetric.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kSuggestions = 3;
constexpr int kViewsEach = 5;
constexpr int kMostPhotographs = 100;

// Of both transforms and the scale of the squares.
using Matrix13d = Eigen::Matrix<double, 13, 13>;

struct Candidate {
  View view;
  Matrix13d information;  // that one such photograph adds
};

Pose PoseOfView(const View& view, const Eigen::Vector3d& centre) {
  const double direction = view.tiltDirectionDegrees * kDegree;
  // A rotation about the axis across the direction tilts the normal towards the direction.
  const Eigen::Vector3d axis(-std::sin(direction), std::cos(direction), 0);
  Pose pose = Pose::Identity();
  pose.linear() = Eigen::AngleAxisd(view.tiltDegrees * kDegree, axis).toRotationMatrix() *
                  RotationAbout(2, view.rollDegrees);
  pose.translation() = Eigen::Vector3d(0, 0, view.distanceMetres) - pose.linear() * centre;
  return pose;
}

// From the optical axis to the normal of a board, about the axis across both. Eigen's own function
// for any two vectors takes seconds to compile.
Eigen::Quaterniond TiltOf(const Eigen::Vector3d& normal) {
  const Eigen::Vector3d to = normal.normalized();
  if (to.z() < -1 + 1e-12) {
    return {0, 1, 0, 0};
  }
  const double twiceCosine = std::sqrt((1 + to.z()) * 2);  // of half the angle
  const double factor = 1 / twiceCosine;
  return {0.5 * twiceCosine, -to.y() * factor, to.x() * factor, 0};
}

bool IsInImage(const Pose& pose, const Evidence& evidence) {
  const Lens& lens = evidence.corners.model.lens;
  return std::all_of(evidence.corners.board.begin(), evidence.corners.board.end(),
                     [&](const auto& point) {
                       const Eigen::Vector3d seen = pose * point;
                       if (!(seen.z() > 1e-3)) {
                         return false;
                       }
                       const Eigen::Vector2d pixel = Project(lens, seen);
                       return pixel.x() > 0.03 * lens.width && pixel.x() < 0.97 * lens.width &&
                              pixel.y() > 0.03 * lens.height && pixel.y() < 0.97 * lens.height;
                     });
}

std::optional<Candidate> Consider(const View& view, const Evidence& evidence,
                                  const Solution& solution) {
  const Pose pose = PoseOfView(view, 0.5 * evidence.corners.board.back());
  if (!IsInImage(pose, evidence)) {
    return std::nullopt;
  }
  std::vector<Eigen::Vector2d> corners(evidence.corners.board.size(), Eigen::Vector2d::Zero());
  const auto equations =
      EquationsAt(pose, evidence.corners.model.lens, evidence.corners.board, corners);
  if (!equations) {
    return std::nullopt;
  }
  const double variance = evidence.corners.noisePixels * evidence.corners.noisePixels;
  const NoiseCarriers carriers =
      CarriersOf(solution.Transform_Cam_Tc, pose * solution.Transform_Tr_Chart.inverse());
  const Matrix6d covariance = solution.noise.rotation * carriers.rotation +
                              solution.noise.translation * carriers.translation +
                              variance * Ldlt(equations->byPose).Inverse();
  Eigen::Matrix<double, 6, 13> design;
  design << Matrix6d::Identity(), Adjoint(pose), Eigen::Matrix<double, 6, 1>::Zero();
  design.col(12).tail<3>() = -pose.translation();
  return Candidate{view, design.transpose() * covariance.llt().solve(design)};
}

std::vector<Candidate> Candidates(const Evidence& evidence, const Solution& solution) {
  const Eigen::Vector3d board = evidence.corners.board.back();
  const Lens& lens = evidence.corners.model.lens;
  // The board fills most of the image at this distance.
  const double near =
      std::max(lens.fx * board.x() / lens.width, lens.fy * board.y() / lens.height) / 0.75;
  std::vector<Candidate> candidates;
  for (const double distance : {near, 1.5 * near}) {
    for (const double tilt : {0.0, 20.0, 40.0}) {
      for (int side = 0; side < (tilt > 0 ? 8 : 1); ++side) {
        // With more roll a detector may begin at the opposite corner.
        for (const double roll : {-45.0, 0.0, 45.0}) {
          if (auto candidate = Consider({tilt, 45.0 * side, roll, distance}, evidence, solution)) {
            candidates.push_back(*candidate);
          }
        }
      }
    }
  }
  return candidates;
}

// Of Transform_Cam_Tc: its rotation, as what it does at this distance, and its translation; metres.
double Uncertainty(const Matrix13d& information, double distance) {
  const Matrix13d covariance = information.ldlt().solve(Matrix13d::Identity());
  const double rotation = covariance.diagonal().head<3>().sum();
  const double translation = covariance.diagonal().segment<3>(3).sum();
  return std::sqrt(rotation * distance * distance + translation);
}

// Of the photographs, and of what is known of the scale from elsewhere.
Matrix13d InformationOf(const Evidence& evidence, const Solution& solution) {
  Solution with = solution;
  with.unknowns.step.reset();
  with.unknowns.squareSize = true;
  Matrix13d information = Matrix13d::Zero();
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    if (solution.used[i]) {
      const Design design = DesignOf(evidence.loops[i], i, with);
      const Matrix6d weight = Inverse(CovarianceOf(evidence.loops[i], with, with.noise));
      information += design.transpose() * weight * design;
    }
  }
  constexpr double kExact = 1e-8;
  information(12, 12) +=
      1 / std::max(kExact, evidence.nuisanceCovariance.bottomRightCorner<1, 1>()(0, 0));
  return information;
}

}  // namespace

View ViewOf(const Pose& Transform_Cam_Chart, const std::vector<Eigen::Vector3d>& board) {
  const Eigen::Vector3d normal = Transform_Cam_Chart.linear().col(2);
  const Eigen::Matrix3d tilt = TiltOf(normal).toRotationMatrix();
  const Eigen::Vector3d row = tilt.transpose() * Transform_Cam_Chart.linear().col(0);
  View view;
  view.tiltDegrees = std::atan2(normal.head<2>().norm(), normal.z()) / kDegree;
  view.tiltDirectionDegrees = std::atan2(normal.y(), normal.x()) / kDegree;
  view.rollDegrees = std::atan2(row.y(), row.x()) / kDegree;
  view.distanceMetres = (Transform_Cam_Chart * Eigen::Vector3d(0.5 * board.back())).norm();
  return view;
}

Suggestions SuggestViews(const Evidence& evidence, const Solution& solution) {
  const std::vector<Candidate> candidates = Candidates(evidence, solution);
  const double distance = MeanDistance(evidence.loops);
  Matrix13d information = InformationOf(evidence, solution);
  const double now = Uncertainty(information, distance);
  Suggestions suggestions;
  double before = now;
  for (int photographs = kViewsEach; photographs <= kMostPhotographs; photographs += kViewsEach) {
    const Candidate* best = nullptr;
    double least = before;
    for (const Candidate& candidate : candidates) {
      const Matrix13d with = information + kViewsEach * candidate.information;
      if (const double after = Uncertainty(with, distance); after < least) {
        least = after;
        best = &candidate;
      }
    }
    if (best == nullptr) {
      break;
    }
    if (suggestions.views.size() < kSuggestions) {
      suggestions.views.push_back({{best->view}, kViewsEach, before / least});
    }
    if (least <= now / 2) {
      suggestions.photographsToHalve = photographs;
      break;
    }
    information += kViewsEach * best->information;
    before = least;
  }
  return suggestions;
}

}  // namespace trackedcam::crosscheck
