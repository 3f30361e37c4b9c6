// The engines that a calibration can be handed to.

#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What the library hands out for an engine, named as in its header; empty where the engine has no
/// such figure.
struct EngineFigures {
  std::vector<double> translationCm;
  std::vector<double> rotationDeg;
  std::vector<double> quaternionXyzw;
  std::vector<double> fovX;
  std::vector<double> lensCentre;
};

using Axes = std::array<const char*, 3>;

struct Engine {
  std::string_view name;  // on the command line
  const char* title;
  const char* hand;
  Axes cameraAxes;       // where x, y and z of the engine point, seen from the camera
  Axes trackerAxes;      // which axes of the tracker, as it is reported, they are
  Axes translationAxes;  // along which of these the translation counts
  Axes rotationNames;    // of the three angles; unused where a quaternion is handed out
  int (*convert)(const CalibrationOutputs&, const std::string& logFolder, EngineFigures&);
};

extern const std::array<Engine, 4> kEngines;

}  // namespace trackedcam::host
