#pragma once

#include <filesystem>
#include <string>

#include "app/engines/engine.h"

namespace trackedcam::app {

/// What became of handing a calibration to an engine.
struct EngineExport {
  const Engine* engine = nullptr;
  int code = 0;
  bool isGimbalLocked = false;
  EngineFigures figures;
  std::filesystem::path log;  // empty when the library could not write one
};

/// Calls the library.
/// @param verbose Whether the library's own lines appear on standard output.
EngineExport ExportToEngine(const Engine& engine, const CalibrationOutputs& calibration,
                            const std::filesystem::path& logFolder, bool verbose);

/// What went wrong, or what to beware of, and what to do; empty when all is well.
std::string ProblemOf(const EngineExport& engineExport);

}  // namespace trackedcam::app
