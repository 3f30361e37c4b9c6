// All that is known of a run when it has ended.

#pragma once

#include <filesystem>
#include <vector>

#include "app/engines/engine_export.h"
#include "app/run/calibration_outputs.h"
#include "app/run/run_record.h"

namespace trackedcam::app {

struct CalibrationReport {
  int code = 0;
  CalibrationOutputs outputs;
  RunRecord record;
  std::vector<EngineExport> exports;          // those that were asked for
  std::filesystem::path log;                  // empty when the library could not write one
  std::vector<std::filesystem::path> images;  // the reprojected ones
};

}  // namespace trackedcam::app
