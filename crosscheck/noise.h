// How noisy the trackers are, found from the shoot itself.

#pragma once

#include <vector>

#include <Eigen/Core>

#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Variances about (radian²) and along (metre²) each axis of each tracker, in the tracker's frame.
struct Noise {
  double turn = 1e-6;
  double shift = 1e-6;
  bool isApart = false;  // the loops tell the one from the other
};

/// What noise of variance 1 does to a residual: in the frames of both trackers, carried into Cam.
struct NoiseCarriers {
  Matrix6d turn;
  Matrix6d shift;
};

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr);

/// The sums over the loops that restricted maximum likelihood is made of.
struct LikelihoodSums {
  Eigen::Vector2d squares = Eigen::Vector2d::Zero();  // of weighted residuals, through the carriers
  Eigen::Vector2d expected = Eigen::Vector2d::Zero();  // of these, under the present noise
  Eigen::Matrix2d information = Eigen::Matrix2d::Zero();
};

/// One step of Fisher's scoring from the present noise, which it keeps above what files can hold.
Noise ScoringStep(const Noise& noise, const LikelihoodSums& sums);

}  // namespace trackedcam::crosscheck
