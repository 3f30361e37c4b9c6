// The engines that a calibration can be handed to.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/engines/placement.h"
#include "host/engines/unity.h"
#include "host/engines/unreal.h"

namespace trackedcam::host {

/// What the library hands out for an engine, named as in its header, or what is computed here for
/// Unreal or Unity; empty where the engine has no such figure.
struct EngineFigures {
  std::vector<double> translationCm;
  std::vector<double> rotationDeg;
  std::vector<double> quaternionXyzw;
  std::vector<double> fovX;
  std::vector<double> lensCentre;
  std::optional<UnrealFigures> unreal;
  std::optional<UnityFigures> unity;
};

using Axes = std::array<const char*, 3>;

struct Engine {
  std::string_view name;  // on the command line
  const char* title;
  const char* hand;
  Axes cameraAxes;       // where x, y and z of the engine point, seen from the camera
  Axes trackerAxes;      // which axes of the tracker, as it is reported, they are; see below
  Axes translationAxes;  // along which of these the translation counts
  Axes rotationNames;    // of the three angles; unused where a quaternion is handed out
  /// The library's code; 0 where the figures are computed here, without a log.
  int (*convert)(const HandOver&, const std::string& logFolder, EngineFigures&);
  /// Whether the figures are computed here, for a parent whose axes can be chosen: trackerAxes are
  /// then those that it presumes.
  bool takesParentAxes;
};

extern const std::array<Engine, 6> kEngines;

/// What became of handing a calibration to an engine.
struct EngineExport {
  const Engine* engine = nullptr;
  int code = 0;
  bool isGimbalLocked = false;
  EngineFigures figures;
  std::string refusal;        // why there are no figures, where no log says so
  std::filesystem::path log;  // empty when the library was not asked or could not write one
};

/// Calls the library, or computes the figures.
/// @param folder For the library's log, of this call alone; created when missing.
/// @throws InputError for parent axes that the engine cannot have.
EngineExport ExportToEngine(const Engine& engine, const HandOver& handOver,
                            const std::filesystem::path& folder);

/// What went wrong, or what to beware of, and what to do; empty when all is well.
std::string ProblemOf(const EngineExport& engineExport);

/// The figures at full precision, with the axes they count along.
nlohmann::ordered_json EngineJson(const EngineExport& engineExport);

}  // namespace trackedcam::host
