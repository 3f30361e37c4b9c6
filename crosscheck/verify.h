// Whether a calibration still holds, from a few new photographs, and otherwise what has changed.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/calibration.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/shoot_fit.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// With fewer, one bad photograph looks like a change.
constexpr std::size_t kLeastToVerify = 3;

enum class Answer {
  kHolds,
  kCameraTrackerMoved,
  kChartTrackerMoved,
  kBothTrackersMoved,
  kLensChanged,
  kLensAndTracker,  // the lens changed, and a tracker moved
  kUnclear,         // something changed, but the photographs do not distinguish what
  kUnrelated,       // no change of these explains them: other trackers, chart or reading
  kTooFew,          // photographs
};

/// holds, cameraTrackerMoved, chartTrackerMoved, ...
const char* Name(Answer answer);

/// Of a tracker on its mount, in the frame of the tracker; with half-widths of 95 % intervals.
struct MountMove {
  Eigen::Vector3d mm = Eigen::Vector3d::Zero();
  Eigen::Vector3d degrees = Eigen::Vector3d::Zero();  // of the rotation vector
  Eigen::Vector3d halfMm = Eigen::Vector3d::Zero();
  Eigen::Vector3d halfDegrees = Eigen::Vector3d::Zero();
  Pose move = Pose::Identity();  // of Transform_Cam_Tc from the right, of Transform_Tr_Chart from
                                 // the left
};

/// What usually changes a lens in this way.
enum class LensCause { kZoom, kFocus, kStabilisation, kSeveral };

/// zoom, focus, stabilisation, several
const char* Name(LensCause cause);

struct ChangedValue {
  double change = 0;
  double half = 0;  // width of the 95 % interval
};

struct LensChange {
  ChangedValue focalPercent;
  ChangedValue cx, cy;  // pixels
  ChangedValue k1, k2;
  bool hasFocal = false;  // these are part of the change
  bool hasCentre = false;
  bool hasDistortion = false;
  LensCause cause = LensCause::kSeveral;
};

/// Changes in the worst direction that would have been found with a probability of 95 %.
struct Detectable {
  double mm = 0;
  double degrees = 0;
};

struct Verification {
  Answer answer = Answer::kTooFew;
  std::size_t usable = 0;
  std::size_t used = 0;
  double p = 1;  // of the clearest change: how likely one as clear is by chance, if nothing changed
  std::optional<MountMove> camera;  // what moved
  std::optional<MountMove> chart;
  std::optional<LensChange> lens;
  /// A distortion that the calibration's lens has no parameters for, as the new photographs show
  /// it; pixels are those in the photographs, and the rest is NaN.
  std::optional<LensModel> lensModel;
  std::vector<Answer> candidates;  // if it is unclear, the likeliest first
  Detectable cameraDetectable;
  Detectable chartDetectable;  // NaN if the chart was mounted anew
  double focalDetectablePercent = 0;
  /// What the calibration is worth in the image; empty if the camera has changed.
  std::vector<OnScreen> onScreen;
  double noiseFactor = 1;  // of the trackers, now against then; above 1 only if it is certain
  double cornerNoisePixels = 0;
  Diversity diversity;                       // of the new photographs
  Pose Transform_Cam_Tc = Pose::Identity();  // after the change
  Pose Transform_Tr_Chart = Pose::Identity();
  Lens newLens;
  std::vector<Verified> photographs;  // in order
};

struct VerifyOptions {
  bool chartRemounted = false;      // its mounting is unknown
  std::optional<Board> otherBoard;  // than that of the calibration; only if remounted
  std::vector<double> atMetres;     // distances for errors in the image; empty: the usual ones
};

/// The photographs' rows are read as those of the calibration were.
/// @throws std::invalid_argument for a photograph with another number of corners than the board.
Verification Verify(const Calibration& calibration, const std::vector<Photograph>& photographs,
                    const VerifyOptions& options = {});

}  // namespace trackedcam::crosscheck
