// The engines to which a calibration can be exported.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/engines/placement.h"
#include "host/engines/unity.h"
#include "host/engines/unreal.h"

namespace trackedcam::host {

/// The values for an engine: the outputs of the library, named as in its header, or what is
/// computed here for Unreal or Unity. Empty if the engine has no such value.
struct EngineValues {
  std::vector<double> translationCm;
  std::vector<double> rotationDeg;
  std::vector<double> quaternionXyzw;
  std::vector<double> fovX;
  std::vector<double> lensCentre;
  std::optional<UnrealValues> unreal;
  std::optional<UnityValues> unity;
};

using Axes = std::array<const char*, 3>;

struct Engine {
  std::string_view name;  // on the command line
  const char* title;
  const char* handedness;
  Axes cameraAxes;       // directions of x, y and z, seen from the camera: "right", "up", ...
  Axes trackerAxes;      // directions of x, y and z in the tracker's reported axes
  Axes translationAxes;  // directions of the translation's x, y and z in the reported axes
  Axes rotationNames;    // of the three angles; unused for a quaternion
  /// @return The library's code, or 0 if the values are computed here, without a log.
  int (*convert)(const ExportInput&, const std::string& logFolder, EngineValues&);
  /// Whether the values are computed here, for a parent whose axes the user can choose. trackerAxes
  /// are then the default.
  bool takesParentAxes;
};

extern const std::array<Engine, 6> kEngines;

/// The result of an export.
struct EngineExport {
  const Engine* engine = nullptr;
  int code = 0;
  bool isGimbalLocked = false;
  EngineValues values;
  std::string refusal;        // why there are no values, if no log gives the reason
  std::filesystem::path log;  // empty if the library was not called or could not write one
  std::string doubt = {};     // about the result that was exported; empty if there is none
};

/// Calls the library, or computes the values.
/// @param folder For the library's log of this call; created if it is missing.
/// @throws InputError if the parent axes are invalid.
EngineExport ExportToEngine(const Engine& engine, const ExportInput& input,
                            const std::filesystem::path& folder);

/// The error or warning of an export and what to do, in one or two sentences; empty if there is
/// none.
std::string ProblemOf(const EngineExport& engineExport);

/// The values at full precision, with their axes.
nlohmann::ordered_json EngineJson(const EngineExport& engineExport);

}  // namespace trackedcam::host
