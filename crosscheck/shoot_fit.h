// New photographs solved with an earlier calibration as the prior, and with what may have changed
// since freed from it.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/calibration.h"
#include "crosscheck/chart_pose.h"
#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// What may have changed since the calibration.
struct Freed {
  bool camera = false;  // its tracker on its mount
  bool chart = false;   // the same
  bool focal = false;   // by the same factor along both axes
  bool centre = false;
  bool distortion = false;  // k1 and k2

  constexpr int LensCount() const {
    return (focal ? 1 : 0) + (centre ? 2 : 0) + (distortion ? 2 : 0);
  }
  constexpr int Count() const { return (camera ? 6 : 0) + (chart ? 6 : 0) + LensCount(); }
};

/// The change of the focal lengths as a fraction, of cx, cy (pixels), k1 and k2.
using LensChangeVector = Eigen::Matrix<double, 5, 1>;

struct ShootFit {
  Freed freed;
  Pose cameraMove = Pose::Identity();  // Transform_Cam_Tc is this from the right
  Pose chartMove = Pose::Identity();   // Transform_Tr_Chart is this from the left
  LensChangeVector lensChange = LensChangeVector::Zero();
  /// Of the left twists of the two moves, in the frames of the trackers, and of what is freed of
  /// the lens, in this order.
  Eigen::MatrixXd covariance;
  double squares = 0;      // weighted, of all residuals and of the calibration's own change
  double loopSquares = 0;  // of these, without those of the corners in their photographs
  double loopFreedom = 0;  // what loopSquares is on average
};

/// One new photograph.
struct Verified {
  std::string name;
  bool used = false;
  double oldPixels = 0;  // root mean square between the corners and those that the old result
                         // predicts; NaN if unknown
  double newPixels = 0;  // the same after the change that was found
  double oldMm = 0;      // of a tracker that would make the old result fit
  double oldDegrees = 0;
  std::vector<Eigen::Vector2d> oldPredicted;  // pixels; NaN behind the camera
  std::vector<Eigen::Vector2d> newPredicted;
};

class NewShoot {
 public:
  /// @throws std::invalid_argument for a photograph with another number of corners than the board.
  NewShoot(const Calibration& calibration, const std::vector<Photograph>& photographs,
           const std::optional<Board>& otherBoard);

  const Calibration& Old() const { return old_; }
  const std::vector<std::size_t>& Usable() const { return usable_; }
  /// One for each usable photograph, with the lens of the calibration.
  const Loops& OldLoops() const { return oldLoops_; }
  double CornerNoise() const { return cornerNoise_; }  // pixels
  Lens LensWith(const LensChangeVector& change) const;

  /// The old result as it is.
  ShootFit NothingFreed() const;

  /// Nothing if the photographs do not determine what is freed.
  /// @param used Indices of usable photographs.
  /// @param noise Of the trackers, as a factor of the old variances.
  std::optional<ShootFit> Fit(const std::vector<std::size_t>& used, const Freed& freed,
                              double noise) const;

  /// One for each photograph.
  std::vector<Verified> Compare(const ShootFit& fit, const std::vector<std::size_t>& used) const;

 private:
  // A photograph with one lens.
  struct Seen {
    Loop loop;
    ModelEquations equations;
    double squares = 0;  // pixels²
  };
  struct Sums;

  std::optional<Seen> See(std::size_t photograph, const Lens& lens) const;
  std::optional<std::vector<Seen>> SeeAll(const std::vector<std::size_t>& used,
                                          const Lens& lens) const;
  ShootFit Start(const std::vector<Seen>& seen, const Freed& freed) const;
  Twist ResidualOf(const Loop& loop, const ShootFit& fit) const;
  Pose PredictedOf(const Loop& loop, const ShootFit& fit) const;
  Sums Sum(const std::vector<Seen>& seen, const ShootFit& fit, double noise) const;
  void MeasureCornerNoise();

  Calibration old_;
  std::vector<Photograph> photographs_;
  Board board_;
  std::vector<Eigen::Vector3d> points_;
  bool isOtherBoard_ = false;
  Eigen::MatrixXd root_;  // of the covariance: what is uncertain by independent unit variables
  double cornerNoise_ = 0;
  std::vector<std::optional<Seen>> seen_;  // one for each photograph, with the old lens
  std::vector<std::size_t> usable_;
  Loops oldLoops_;
};

}  // namespace trackedcam::crosscheck
