#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <Eigen/Geometry>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What an engine is handed.
struct HandOver {
  CalibrationOutputs calibration;
  std::optional<std::array<double, 2>> sensorMm;  // nothing: not known, as in an old result file
  std::string parentAxes;  // as ParseParentAxes takes them; empty: those that the engine presumes
};

// How the camera sits at its tracker.

/// The camera in a frame of its tracker.
struct CameraPlacement {
  Eigen::Matrix3d rotation;  // its columns are the camera's axes
  Eigen::Vector3d position;  // of the optical centre, metres
};

/// Whether sixteen values row by row are a rotation and a translation that can be anywhere on a
/// set: not singular, not scaled, and finite.
bool IsPlacement(const std::vector<double>& transformCamTc);

/// Seen from the camera in the optical frame: where an engine's axes X, Y and Z point, in columns.
Eigen::Matrix3d ForwardRightUp();
Eigen::Matrix3d RightUpForward();

/// @param transformCamTc Sixteen values row by row, as the library hands them out.
/// @return In the tracker's axes as they are reported; the columns are x right, y down, z forward.
/// @throws std::invalid_argument when there are fewer, or when they are no rotation.
CameraPlacement PlacementInReportedAxes(const std::vector<double>& transformCamTc);

/// The same placement for an engine.
/// @param fromReported Takes coordinates in reported axes into the engine's, at the tracker.
/// @param axesAtCamera The engine's axes at the camera.
CameraPlacement InEngineAxes(const CameraPlacement& reported, const Eigen::Matrix3d& fromReported,
                             const Eigen::Matrix3d& axesAtCamera);

/// x, y, z, w with w not below 0. The rotation is taken as a matrix of coordinates, whatever the
/// hand of its axes: left-handed engines multiply quaternions by the same formula.
std::vector<double> QuaternionXyzw(const Eigen::Matrix3d& rotation);

// The axes of the thing that the tracker moves in an engine: the camera's parent.

/// An engine's X, Y and Z in the tracker's reported axes, as in "z,-x,y".
struct ParentAxes {
  std::string text;
  Eigen::Matrix3d fromReported;  // takes coordinates in reported axes into the engine's
};

/// The forms that --parent-axes takes by name, whatever the engine: forward is the reported z or
/// its opposite, up is the reported y.
constexpr const char* kZForward = "z-forward";
constexpr const char* kMinusZForward = "minus-z-forward";

/// @param text Three of x, y, z, each once and with or without a minus, or one of the names.
/// @param zForward What the engine calls z-forward, as a text of the first form.
/// @throws InputError when it is neither, or when the axes are right-handed: the reported ones are,
///         and the engines that ask are left-handed.
ParentAxes ParseParentAxes(const std::string& text, const std::string& zForward);

// The lens in the measures that engines share.

struct EngineLens {
  std::array<int, 2> imageSize = {};  // pixels
  /// Of the part of the sensor that the picture uses: the width that was stated, and the height at
  /// which one focal length serves both directions.
  std::array<double, 2> filmbackMm = {};
  double focalLengthMm = 0;
  std::array<double, 2> fxFy = {};  // parts of the image's width and height
  /// The principal point in parts of the image from its top left corner. That corner lies half a
  /// pixel before the centre of the first pixel, from which the library counts.
  std::array<double, 2> imageCenter = {};
  double k1 = 0, k2 = 0, k3 = 0, p1 = 0, p2 = 0;  // of the Brown-Conrady model
};

/// Nothing where the sensor, the size of the image or the distortion is not known.
std::optional<EngineLens> LensOf(const HandOver& handOver);

}  // namespace trackedcam::host
