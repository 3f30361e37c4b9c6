#pragma once

#include <filesystem>
#include <string>

#include "host/input/inputs.h"

namespace trackedcam::host {

/// Looks around the data file and the working folder for a photograph that is not where its row
/// says, and tells in one sentence what to do.
std::string AdviceOnMissing(const std::string& photograph, const Inputs& inputs);

}  // namespace trackedcam::host
