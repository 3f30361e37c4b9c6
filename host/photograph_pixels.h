// The pixels of a run's photographs, for what the run itself does not say of them.

#pragma once

#include <filesystem>
#include <mutex>
#include <optional>

#include "host/input/edge_width.h"
#include "host/photograph_list.h"
#include "host/report.h"

namespace trackedcam::host {

/// Empty for a name that is no path on this system.
std::filesystem::path FileOf(const PhotographEntry& entry, const Report& report);

/// At the corners that the run found, or over the whole photograph if it found none. Known after
/// the first call: a photograph is decoded once for both runs of a calibration. May be called on
/// several threads at the same time, for different photographs.
/// @param entry One that was given to the library.
/// @param large Held while a large photograph is in memory, so that there is one at a time.
std::optional<Sharpness> SharpnessOf(const PhotographEntry& entry, const Report& report,
                                     std::mutex& large);

}  // namespace trackedcam::host
