// Finds what is wrong with a tracker data file before any photograph is read. The library reads 0
// for what is not a number and reports nothing; the result is then wrong without a reason.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

struct DataChecks {
  std::vector<Finding> findings;  // the worst first; one for each fault, however many rows have it

  /// Indices of rows, ascending, in which a tracker has no pose: it was lost, its pose was not
  /// updated, or a value is missing or not a number. One such row can spoil the whole result.
  std::vector<std::size_t> leaveOut;
};

/// @param content The whole file.
/// @param rows ReadRows of it.
DataChecks CheckData(const std::string& content, const std::vector<DataRow>& rows);

}  // namespace trackedcam::host
