// Flaws of lens and board that the corners show: those that a calibration's lens of k1 and k2 and
// a flat board with square squares leave out.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/chart_pose.h"
#include "crosscheck/corner_model.h"

namespace trackedcam::crosscheck {

/// The flaws, each with its parameters of the corner model.
enum class CornerFlaw { kTangential, kSixthOrder, kStretched, kNotFlat };

/// The parameters of the corner model that describe it.
std::vector<Eigen::Index> ParametersOf(CornerFlaw flaw);

struct CornerFit {
  CornerModel model;
  std::vector<Eigen::Vector3d> board;                    // of the model
  std::vector<std::optional<ChartPose>> poses;           // one for each photograph
  std::vector<std::optional<ModelEquations>> equations;  // one for each photograph
  double noisePixels = 0;                                // of a corner along each axis
  CornerMatrix information = CornerMatrix::Zero();       // of all photographs, pixels²

  std::vector<CornerFlaw> flaws;  // that are carried, the clearest first
  /// The parameters that are solved for: the lens's, then those of the flaws.
  std::vector<Eigen::Index> parameters;
  Eigen::MatrixXd covariance;  // of these; NaN if the corners do not determine them
};

/// Fits the poses of the chart with the lens as given, and carries each flaw that is certain: lens,
/// flaws and poses are then solved from all corners together.
/// @param corners One list for each photograph.
CornerFit FitCorners(const CornerModel& model,
                     const std::vector<std::vector<Eigen::Vector2d>>& corners);

/// The covariance of fx, fy, cx, cy, k1, k2, p1, p2, k3 if all nine are unknown, whether or not the
/// fit carries the last three; NaN if the corners do not determine them.
Eigen::Matrix<double, kAllLensParameters, kAllLensParameters> CovarianceOfAnyLens(
    const CornerFit& fit);

/// Degrees of freedom of the corners' noise.
double FreedomOf(const CornerFit& fit);

/// By how much the parameters that are solved for would change if this flaw were left out.
Eigen::VectorXd ChangeWithout(const CornerFit& fit, CornerFlaw flaw);

}  // namespace trackedcam::crosscheck
