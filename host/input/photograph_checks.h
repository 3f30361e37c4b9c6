#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"

namespace trackedcam::host {

// What is wrong with the photographs' files and headers. Decoding them all would take as long as
// the run itself.

struct PhotographChecks {
  std::vector<Finding> findings;  // the worst first

  /// Indices of rows, ascending, that the library must not be given: it would wait for a pipe
  /// without end, decode an image of gigabytes, end at a path that is not UTF-8, or report a
  /// hundred thousand rows without a photograph one by one.
  std::vector<std::size_t> leaveOut;

  /// Of these, the rows without a photograph after the first ten thousand of them: a list would be
  /// too long.
  std::vector<std::size_t> unlisted;
};

/// Reads a few bytes of each photograph. Opens no pipe and no device.
/// @param rows ReadRows of inputs.data.
/// @param inputs Working folder, sensor and the folder of the data file are used.
/// @param excluded Indices of rows, ascending, that are not checked.
PhotographChecks CheckPhotographs(const std::vector<DataRow>& rows, const Inputs& inputs,
                                  const std::vector<std::size_t>& excluded = {});

}  // namespace trackedcam::host
