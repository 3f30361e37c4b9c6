// The log that a run of a known shoot must write.

#pragma once

#include <string>
#include <vector>

#include "shoots/calibrate_shoot.h"
#include "support/log_lines.h"

namespace trackedcam::test {

using ExpectedLog = std::vector<ExpectedLine>;

/// The indices in the "Remove index" lines. It is not known beforehand which photographs the filter
/// removes.
std::vector<std::size_t> RemovedIndices(const std::vector<std::string>& log);

/// The lines before the tracker data file is read.
ExpectedLog OpeningLines(const HostArguments& arguments);

/// The search for the board in every photograph, with the raw data if enough are usable.
ExpectedLog CornerLines(const simulator::Shoot& shoot);

/// The lens, from the start of the solve to the focal length in millimetres.
ExpectedLog LensLines(const simulator::Shoot& shoot);

/// The whole run, which ends with the lines `verdict`.
ExpectedLog RunLines(const simulator::Shoot& shoot, const HostArguments& arguments,
                     const std::vector<std::size_t>& removed, const ExpectedLog& verdict);

}  // namespace trackedcam::test
