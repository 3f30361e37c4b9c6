// The input of a cross-check: corners, lens, tracker poses as reported, and what the user stated.

#pragma once

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace trackedcam::crosscheck {

/// A pinhole with distortion; the centre of the first pixel is (0, 0).
struct Lens {
  int width = 0;                          // of the photographs, pixels
  int height = 0;                         // of the photographs, pixels
  double fx = 0, fy = 0, cx = 0, cy = 0;  // pixels
  double k1 = 0, k2 = 0;                  // radial distortion of second and fourth order
  double p1 = 0, p2 = 0;                  // tangential distortion; a calibration has none
  double k3 = 0;                          // radial distortion of sixth order; the same
};

/// Transform_Tr_Chart = [ Rx · Ry · Rz | translation ], with Tr after the axis fix.
struct Mounting {
  std::array<double, 3> rotationDegrees = {};
  std::array<double, 3> translationMetres = {};
};

/// Half of a row, as the tracking system reported it: Base <- tracker, before the axis fix.
struct TrackerPose {
  Eigen::Vector3d position = Eigen::Vector3d::Zero();            // metres
  Eigen::Vector4d quaternionWxyz = Eigen::Vector4d(1, 0, 0, 0);  // of any length except 0
};

struct Photograph {
  std::string name;
  TrackerPose camera;                                         // the tracker on the camera
  TrackerPose chart;                                          // the tracker on the chart
  double seconds = std::numeric_limits<double>::quiet_NaN();  // when it was taken, of any clock
  /// Row by row, columns fastest; pixels.
  std::vector<Eigen::Vector2d> corners;
  /// How wide the borders between squares are that run along rows, and along columns; pixels. Only
  /// where they were measured.
  std::optional<std::array<double, 2>> edgeWidths = std::nullopt;
};

/// How accurate a result must be.
struct Accuracy {
  double mm = 2;
  double degrees = 0.2;
};

struct Observations {
  int boardColumns = 0;                 // inner corners along a row
  int boardRows = 0;                    // inner corners along a column
  double square = 0;                    // edge of a square, metres
  Lens lens;                            // as solved from these corners
  std::vector<Photograph> photographs;  // in the order of the shoot
  bool invertTrackerQuaternions = false;
  /// The reported x, y, z of a quaternion by those in its row, whose axes may be an engine's.
  Eigen::Matrix3d quaternionAxes = Eigen::Matrix3d::Identity();
  double scaleUncertainty = 0.001;   // of the trackers' lengths against the squares, as a fraction
  std::optional<Mounting> mounting;  // as stated, if it was
  std::optional<Eigen::Matrix4d> library;  // its Transform_Cam_Tc, to be checked
  Accuracy goodEnough;                     // for the user
  std::vector<double> atMetres;  // distances at which errors are given; empty: the usual ones
};

}  // namespace trackedcam::crosscheck
