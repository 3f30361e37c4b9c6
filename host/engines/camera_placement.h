// How the camera sits at its tracker.

#pragma once

#include <vector>

#include <Eigen/Geometry>

namespace trackedcam::host {

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

}  // namespace trackedcam::host
