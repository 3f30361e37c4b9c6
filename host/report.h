// All that is known of a calibration when it has ended.

#pragma once

#include <memory>
#include <vector>

#include "host/engines/engine_export.h"
#include "host/input/inputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

struct Report {
  Inputs inputs;
  LibraryRun run;
  std::vector<EngineExport> exports;  // those that were asked for
};

}  // namespace trackedcam::host
