// The log of a run, written down from what is known of the shoot.

#pragma once

#include <string>
#include <vector>

#include "shoots/calibrate_shoot.h"
#include "support/log_lines.h"

namespace trackedcam::test {

using ExpectedLog = std::vector<ExpectedLine>;

/// The indices in "Remove index" lines: which photographs the filter drops is not known beforehand.
std::vector<std::size_t> RemovedIndices(const std::vector<std::string>& log);

/// What a host's call logs before the tracker data file is read.
ExpectedLog OpeningLines(const HostArguments& arguments);

/// The search of the board in every photograph, raw data included if enough are usable.
ExpectedLog CornerLines(const simulator::Shoot& shoot);

/// The lens, from calibration start to the focal length in millimetres.
ExpectedLog LensLines(const simulator::Shoot& shoot);

/// The whole run up to the verdict, which `verdict` gives line by line.
ExpectedLog RunLines(const simulator::Shoot& shoot, const HostArguments& arguments,
                     const std::vector<std::size_t>& removed, const ExpectedLog& verdict);

}  // namespace trackedcam::test
