#include "crosscheck/views.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <Eigen/Cholesky>

#include "crosscheck/chart_pose.h"
#include "crosscheck/symmetric.h"
#include "crosscheck/twist.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kSuggestions = 3;
constexpr int kViewsEach = 5;
constexpr int kMostPhotographs = 100;

using Matrix12d = Eigen::Matrix<double, 12, 12>;  // of both transforms

// What photographs say.
struct Information {
  Matrix12d transforms;
  Eigen::MatrixXd pull;  // of the nuisances on both transforms: weighted, by each
  Eigen::MatrixXd lens;  // of the parameters of the corner model that are solved for
};

Information operator*(double times, const Information& one) {
  return {times * one.transforms, times * one.pull, times * one.lens};
}

Information operator+(const Information& a, const Information& b) {
  return {a.transforms + b.transforms, a.pull + b.pull, a.lens + b.lens};
}

struct Candidate {
  View view;
  Information information;  // that one such photograph adds
};

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

// The corners of the paper: around the inner corners a square, and the white border, which is at
// least one square wide. Without that border the board is often not found.
std::vector<Eigen::Vector3d> PaperOf(const std::vector<Eigen::Vector3d>& board) {
  const double border = 2 * (board[1] - board[0]).norm();
  const Eigen::Vector3d& end = board.back();
  std::vector<Eigen::Vector3d> paper;
  for (const double x : {-border, 0.5 * end.x(), end.x() + border}) {
    for (const double y : {-border, 0.5 * end.y(), end.y() + border}) {
      paper.emplace_back(x, y, 0);
    }
  }
  return paper;
}

// With a margin, because nobody holds a camera exactly so.
bool IsInImage(const Pose& pose, const std::vector<Eigen::Vector3d>& points, const Lens& lens) {
  constexpr double kMargin = 0.04;  // of width and height
  return std::all_of(points.begin(), points.end(), [&](const auto& point) {
    const Eigen::Vector3d seen = pose * point;
    if (!(seen.z() > 1e-3)) {
      return false;
    }
    const Eigen::Vector2d pixel = Project(lens, seen);
    return pixel.x() > kMargin * lens.width && pixel.x() < (1 - kMargin) * lens.width &&
           pixel.y() > kMargin * lens.height && pixel.y() < (1 - kMargin) * lens.height;
  });
}

std::optional<Candidate> Consider(const View& view, const Evidence& evidence,
                                  const Solution& solution) {
  const CornerFit& fit = evidence.corners;
  const Pose pose = PoseOfView(view, fit.board);
  std::vector<Eigen::Vector2d> corners;
  for (const Eigen::Vector3d& point : fit.board) {
    corners.push_back(Project(fit.model.lens, pose * point));
  }
  const auto equations = EquationsAt(pose, fit.model.lens, fit.board, corners);
  if (!equations) {
    return std::nullopt;
  }
  const double variance = fit.noisePixels * fit.noisePixels;
  const NoiseCarriers carriers =
      CarriersOf(solution.Transform_Cam_Tc, pose * solution.Transform_Tr_Chart.inverse());
  const Matrix6d covariance = solution.noise.rotation * carriers.rotation +
                              solution.noise.translation * carriers.translation +
                              variance * Ldlt(equations->byPose).Inverse();
  Eigen::Matrix<double, 6, 12> design;
  design << Matrix6d::Identity(), Adjoint(pose);
  const Eigen::Matrix<double, 12, 6> weighted = design.transpose() * Inverse(covariance);

  const ModelEquations byModel = ModelEquationsAt({pose, *equations}, fit.model, corners);
  const auto count = static_cast<Eigen::Index>(fit.parameters.size());
  Eigen::MatrixXd byNuisances(6, count + 1);
  Eigen::MatrixXd lens(count, count);
  for (Eigen::Index i = 0; i < count; ++i) {
    const Eigen::Index row = fit.parameters[static_cast<std::size_t>(i)];
    byNuisances.col(i) = byModel.pose.col(row);
    for (Eigen::Index j = 0; j < count; ++j) {
      lens(i, j) = byModel.information(row, fit.parameters[static_cast<std::size_t>(j)]) / variance;
    }
  }
  byNuisances.col(count) << Eigen::Vector3d::Zero(), pose.translation();
  return Candidate{view, {weighted * design, weighted * byNuisances, lens}};
}

// The least distance at which the whole paper is in the image; nothing if there is none, as with a
// lens that is not one.
std::optional<double> NearestWithPaper(View view, const Evidence& evidence) {
  constexpr double kStep = 1.05;
  constexpr int kSteps = 60;
  const std::vector<Eigen::Vector3d>& board = evidence.corners.board;
  const std::vector<Eigen::Vector3d> paper = PaperOf(board);
  const Lens& lens = evidence.corners.model.lens;
  // The inner corners fill the image at this distance.
  view.distanceMetres =
      std::max(lens.fx * board.back().x() / lens.width, lens.fy * board.back().y() / lens.height);
  for (int step = 0; step < kSteps; ++step, view.distanceMetres *= kStep) {
    if (IsInImage(PoseOfView(view, board), paper, lens)) {
      return view.distanceMetres;
    }
  }
  return std::nullopt;
}

// Only what can be photographed: with more tilt or roll than here, a hand that is a few degrees off
// comes to where the board is not found, or is read from its other end.
std::vector<Candidate> Candidates(const Evidence& evidence, const Solution& solution) {
  std::vector<Candidate> candidates;
  for (const double tilt : {0.0, 20.0, 35.0}) {
    for (int side = 0; side < (tilt > 0 ? 8 : 1); ++side) {
      for (const double roll : {-30.0, 0.0, 30.0}) {
        View view = {tilt, 45.0 * side, roll, 0};
        const auto nearest = NearestWithPaper(view, evidence);
        for (const double farther : {1.0, 1.5}) {
          view.distanceMetres = nearest.value_or(0) * farther;
          const auto candidate =
              nearest ? Consider(view, evidence, solution) : std::optional<Candidate>();
          if (candidate) {
            candidates.push_back(*candidate);
          }
        }
      }
    }
  }
  return candidates;
}

// Squared, of Transform_Cam_Tc: its rotation, as what it does at this distance, and its
// translation; metres.
double Variance(const Matrix6d& covariance, double distance) {
  return covariance.diagonal().head<3>().sum() * distance * distance +
         covariance.diagonal().tail<3>().sum();
}

Information InformationOf(const Evidence& evidence, const Solution& solution) {
  Solution with = solution;
  with.unknowns.step.reset();
  with.unknowns.squareSize = false;
  const Eigen::Index nuisances = evidence.nuisanceCovariance.cols();
  const auto lens = evidence.nuisanceCovariance.topLeftCorner(nuisances - 1, nuisances - 1);
  Information information = {
      Matrix12d::Zero(), Eigen::MatrixXd::Zero(12, nuisances),
      Eigen::MatrixXd(lens).ldlt().solve(Eigen::MatrixXd::Identity(nuisances - 1, nuisances - 1))};
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    if (solution.used[i]) {
      const Loop& loop = evidence.loops[i];
      const Design design = DesignOf(loop, i, with);
      const Eigen::MatrixXd weighted =
          design.transpose() * Inverse(CovarianceOf(loop, with, with.noise));
      information.transforms += weighted * design;
      information.pull += weighted * loop.byNuisances;
    }
  }
  return information;
}

// The uncertainty after further photographs, in the way in which that of the result is counted:
// they average noise and determine the lens better, but an error of the scale is in all of them.
class Forecast {
 public:
  Forecast(const Evidence& evidence, const Solution& solution)
      : distance_(MeanDistance(evidence.loops)),
        inflation_(solution.inflation),
        scaleVariance_(evidence.nuisanceCovariance.bottomRightCorner<1, 1>()(0, 0)),
        camera_(solution.Transform_Cam_Tc.translation()),
        information_(InformationOf(evidence, solution)) {}

  double With(const Information& more) const {
    const Information all = information_ + more;
    const Matrix12d noise = all.transforms.ldlt().solve(Matrix12d::Identity());
    const Eigen::MatrixXd byNuisances = noise.topRows<6>() * all.pull;
    const Eigen::Index lens = all.lens.cols();
    const auto byLens = byNuisances.leftCols(lens);
    const Twist byScale = byNuisances.col(lens);
    Matrix6d covariance = inflation_ * noise.topLeftCorner<6, 6>() +
                          byLens * all.lens.ldlt().solve(Eigen::MatrixXd(byLens.transpose())) +
                          scaleVariance_ * byScale * byScale.transpose();
    covariance.bottomRightCorner<3, 3>() += scaleVariance_ * camera_ * camera_.transpose();
    return std::sqrt(Variance(covariance, distance_));
  }

  void Add(const Information& more) { information_ = information_ + more; }

 private:
  const double distance_;
  const double inflation_;
  const double scaleVariance_;
  const Eigen::Vector3d camera_;
  Information information_;
};

}  // namespace

Pose PoseOfView(const View& view, const std::vector<Eigen::Vector3d>& board) {
  const double direction = view.tiltDirectionDegrees * kDegree;
  // A rotation about the axis across the direction tilts the normal towards the direction.
  const Eigen::Vector3d axis(-std::sin(direction), std::cos(direction), 0);
  Pose pose = Pose::Identity();
  pose.linear() = Eigen::AngleAxisd(view.tiltDegrees * kDegree, axis).toRotationMatrix() *
                  RotationAbout(2, view.rollDegrees);
  pose.translation() =
      Eigen::Vector3d(0, 0, view.distanceMetres) - pose.linear() * (0.5 * board.back());
  return pose;
}

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
  Forecast forecast(evidence, solution);
  const double now = std::sqrt(Variance(FullCovariance(solution, evidence).topLeftCorner<6, 6>(),
                                        MeanDistance(evidence.loops)));
  Suggestions suggestions;
  double before = now;
  for (int photographs = kViewsEach; photographs <= kMostPhotographs; photographs += kViewsEach) {
    const Candidate* best = nullptr;
    double least = before;
    for (const Candidate& candidate : candidates) {
      const double after = forecast.With(kViewsEach * candidate.information);
      if (after < least) {
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
    forecast.Add(kViewsEach * best->information);
    before = least;
  }
  return suggestions;
}

}  // namespace trackedcam::crosscheck
