// One instant on a set, as reported and as it stands in an engine.

#pragma once

#include <map>
#include <random>
#include <sstream>
#include <string>

#include "engine_arithmetic.h"
#include "host/engines/placement.h"
#include "support/random_transform.h"

namespace trackedcam::host {

/// Axes by words such as "z,-x,y": row i is the engine's axis i in the axes that the words name.
inline Eigen::Matrix3d AxesOf(const std::string& words) {
  const std::map<char, int> axes = {{'x', 0}, {'y', 1}, {'z', 2}};
  Eigen::Matrix3d matrix = Eigen::Matrix3d::Zero();
  std::istringstream stream(words);
  std::string word;
  for (int row = 0; std::getline(stream, word, ','); ++row) {
    matrix(row, axes.at(word.back())) = word.front() == '-' ? -1 : 1;
  }
  return matrix;
}

/// A camera anywhere with its tracker anywhere at it.
struct Instant {
  explicit Instant(std::mt19937& random)
      : Transform_Base_Cam(test::RandomTransform(random)),
        Transform_Cam_Tc(test::RandomTransform(random)) {
    // The calibration counts along the reported -x, -z and -y of the tracker.
    Transform axisFix = Transform::Identity();
    axisFix.topLeftCorner<3, 3>() << -1, 0, 0, 0, 0, -1, 0, -1, 0;
    reported = Transform_Base_Cam * Transform_Cam_Tc * axisFix;
  }

  /// The tracker as the engine's component holds it.
  /// @param world The engine's axes in those of the tracking system.
  /// @param parent The component's axes in the tracker's reported ones.
  arithmetic::Pose Component(const std::string& world, const std::string& parent,
                             double unitsPerMetre) const {
    return {AxesOf(world) * reported.topLeftCorner<3, 3>() * AxesOf(parent).transpose(),
            AxesOf(world) * reported.topRightCorner<3, 1>() * unitsPerMetre};
  }

  /// The true camera in the engine.
  /// @param atCamera The engine's axes in the camera's x right, y down, z forward.
  arithmetic::Pose Camera(const std::string& world, const std::string& atCamera,
                          double unitsPerMetre) const {
    return {AxesOf(world) * Transform_Base_Cam.topLeftCorner<3, 3>() * AxesOf(atCamera).transpose(),
            AxesOf(world) * Transform_Base_Cam.topRightCorner<3, 1>() * unitsPerMetre};
  }

  CalibrationOutputs Calibration() const {
    CalibrationOutputs outputs;
    outputs.imageSize = {1920, 1080};
    outputs.normFocal = {0.9, 1.6};
    outputs.normCenter = {0.51, 0.48};
    outputs.distortion = {-0.1, 0.02, 0, 0, 0};
    for (int i = 0; i < 16; ++i) {
      outputs.transformCamTc.push_back(Transform_Cam_Tc(i / 4, i % 4));
    }
    return outputs;
  }

  Transform Transform_Base_Cam;
  Transform Transform_Cam_Tc;
  Transform reported;  // Base <- tracker, in the tracker's reported axes
};

}  // namespace trackedcam::host
