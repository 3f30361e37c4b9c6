// What a calibration leaves for later shoots: lens, transform and mounting with everything that is
// needed to test new photographs against them.

#pragma once

#include <vector>

#include <Eigen/Core>

#include "crosscheck/corner_model.h"
#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

constexpr Eigen::Index kTwistsOfBoth = 12;  // elements of the twists of both transforms

struct Calibration {
  Lens lens;          // with the distortion that the corners show
  Board board;        // with the shape that the corners show, and the edge that the trackers show
  double square = 0;  // edge as stated, metres
  Pose Transform_Cam_Tc = Pose::Identity();
  Pose Transform_Tr_Chart = Pose::Identity();

  /// The parameters of the corner model that were solved for, the lens's six first.
  std::vector<Eigen::Index> parameters;
  /// Of all that is uncertain together. Order: these parameters; the scale of the trackers' lengths
  /// against the squares; the left twist of Transform_Cam_Tc; the right twist of
  /// Transform_Tr_Chart.
  Eigen::MatrixXd covariance;

  double scaleUncertainty = 0;     // of another chart's squares, a fraction
  double rotationVariance = 0;     // of each tracker about each of its axes, radian²
  double translationVariance = 0;  // of each tracker along each of its axes, metre²
  double freedom = 0;              // degrees of freedom of these variances
  double cornerNoisePixels = 0;    // along each axis
  /// How much more the photographs differ about the lens than the corners' noise explains, as a
  /// factor of variances; at least 1.
  double cornerInflation = 1;

  bool invertTrackerQuaternions = false;
  Eigen::Matrix3d quaternionAxes = Eigen::Matrix3d::Identity();  // see Observations
};

/// The number of values in its covariance's diagonal.
Eigen::Index CovarianceSize(const std::vector<Eigen::Index>& parameters);

/// Of the lens's nine parameters and the left twist of Transform_Cam_Tc, in this order.
constexpr Eigen::Index kCameraUncertain = kAllLensParameters + 6;
using CameraCovariance = Eigen::Matrix<double, kCameraUncertain, kCameraUncertain>;

/// 0 for parameters that were not solved for.
CameraCovariance CovarianceOfCamera(const Calibration& calibration);

/// Whether all values are finite and possible, and the covariance is one.
bool IsSound(const Calibration& calibration);

}  // namespace trackedcam::crosscheck
