#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "host/engines/engine.h"

namespace trackedcam::host {

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
