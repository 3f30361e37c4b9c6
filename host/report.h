// Everything that is known after a calibration.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/cross_check.h"
#include "host/engines/engine.h"
#include "host/findings/finding.h"
#include "host/input/edge_width.h"
#include "host/input/inputs.h"
#include "host/photograph_list.h"
#include "host/run/library_run.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {

/// How long each part took, of both runs together.
struct PartSeconds {
  std::optional<double> library;     // nothing if only a log was read
  std::optional<double> crossCheck;  // nothing if there was none
};

/// By PhotographEntry::index; nothing for those that were not decoded.
using SharpnessList = std::vector<std::optional<Sharpness>>;

struct Report {
  Inputs inputs;  // of this run: with the mounting that it used
  bool mountingIsStated = true;
  LibraryRun run;
  PhotographList photographs;  // one for each row of the data file, also in a second run
  /// Nothing if the log ends before corners and lens.
  std::optional<crosscheck::CrossCheck> crossCheck;
  std::vector<Finding> findings;  // about input and result, the worst first
  Verdict verdict;
  std::vector<EngineExport> exports;       // as requested
  std::shared_ptr<const Report> firstRun;  // null if there was only one
  PartSeconds seconds;
  std::shared_ptr<SharpnessList> sharpness;  // of both runs; null if only a log was read
};

}  // namespace trackedcam::host
