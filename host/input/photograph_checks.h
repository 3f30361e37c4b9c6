#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"

namespace trackedcam::host {

/// Looks around the data file and the working folder for a photograph that is not where its row
/// says, and tells in one sentence what to do.
std::string AdviceOnMissing(const std::string& photograph, const Inputs& inputs);

// What is wrong with the photographs, seen from outside: their files and headers. Decoding them all
// would take as long as the run itself.

struct PhotographChecks {
  std::vector<Finding> findings;  // the worst first

  /// Indices of rows, ascending, which the library must not be given: it would wait for a pipe for
  /// ever, decode a picture of gigabytes, end at a path that is not UTF-8, or tell of a hundred
  /// thousand rows without a photograph one by one.
  std::vector<std::size_t> leaveOut;
};

/// Reads a few bytes of each photograph. Opens no pipe and no device.
/// @param rows ReadRows of inputs.data.
/// @param inputs The working folder, the sensor and where the data file lies count.
PhotographChecks CheckPhotographs(const std::vector<DataRow>& rows, const Inputs& inputs);

}  // namespace trackedcam::host
