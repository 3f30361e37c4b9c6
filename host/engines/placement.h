// What all engines need: the camera's pose relative to its tracker, the axes of the camera's
// parent, and the lens.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <Eigen/Geometry>

#include "host/engines/origin.h"
#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What is exported.
struct ExportInput {
  CalibrationOutputs calibration;
  std::optional<std::array<double, 2>> sensorMm;  // nothing: unknown, as in an old result file
  std::string parentAxes;             // as for ParseParentAxes; empty: the engine's default
  std::optional<Origin> origin = {};  // nothing: the export does not say it
  /// The one to show without distortion: that in which the chart was seen nearest to a corner of
  /// the image. Empty if the result names none.
  std::filesystem::path photograph = {};
};

// The pose.

/// The camera's pose relative to its tracker.
struct CameraPlacement {
  Eigen::Matrix3d rotation;  // its columns are the camera's axes, in the tracker's
  Eigen::Vector3d position;  // of the optical centre, metres
};

/// Whether a transform, sixteen values row by row, is rigid, finite and not farther than anything
/// on a set.
bool IsPlacement(const std::vector<double>& transformCamTc);

/// @param transformCamTc Sixteen values row by row, as the library returns them.
/// @return In the tracker's reported axes; the camera's axes are x right, y down, z forward.
/// @throws std::invalid_argument if there are fewer values, or if they are not a rigid transform.
CameraPlacement PlacementInReportedAxes(const std::vector<double>& transformCamTc);

/// An engine's axes X, Y and Z at the camera: their directions in the camera's x right, y down,
/// z forward, in columns.
Eigen::Matrix3d ForwardRightUp();
Eigen::Matrix3d RightUpForward();
Eigen::Matrix3d RightForwardUp();

/// The same pose in an engine's axes.
/// @param fromReported Converts coordinates from the tracker's reported axes to the engine's.
/// @param axesAtCamera The engine's axes at the camera.
CameraPlacement InEngineAxes(const CameraPlacement& reported, const Eigen::Matrix3d& fromReported,
                             const Eigen::Matrix3d& axesAtCamera);

/// x, y, z, w with w not below 0. The matrix may be in left-handed axes: left-handed engines
/// multiply quaternions by the same formula.
std::vector<double> QuaternionXyzw(const Eigen::Matrix3d& rotation);

// The axes of the camera's parent: the component or transform that the tracker moves.

/// An engine's X, Y and Z in the tracker's reported axes, such as "z,-x,y".
struct ParentAxes {
  std::string text;
  Eigen::Matrix3d fromReported;  // converts coordinates from the reported axes to the engine's
};

/// Names that --parent-axes takes for every engine: forward is the reported z or -z, up is the
/// reported y.
constexpr const char* kZForward = "z-forward";
constexpr const char* kMinusZForward = "minus-z-forward";

/// @param text x, y and z, each once and with or without a minus, or one of the names.
/// @param zForward The engine's axes for z-forward, as letters.
/// @throws InputError if the text is neither, or if the axes are of the other hand than zForward.
ParentAxes ParseParentAxes(const std::string& text, const std::string& zForward);

// The lens.

/// In the units that engines share.
struct EngineLens {
  std::array<int, 2> imageSize = {};  // pixels
  /// Size of the part of the sensor that the image uses: the stated width, and the height at which
  /// one focal length is right in both directions.
  std::array<double, 2> filmbackMm = {};
  double focalLengthMm = 0;
  std::array<double, 2> fxFy = {};  // in image widths and heights
  /// Principal point in image widths and heights from the image's top left corner. The corner is
  /// half a pixel before the centre of the first pixel, where the library's coordinates begin.
  std::array<double, 2> imageCenter = {};
  double k1 = 0, k2 = 0, k3 = 0, p1 = 0, p2 = 0;  // of the Brown-Conrady model
};

/// Nothing if the sensor, the size of the image or the distortion is unknown.
std::optional<EngineLens> LensOf(const ExportInput& input);

}  // namespace trackedcam::host
