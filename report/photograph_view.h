// What the template shows of the photographs of a run.

#pragma once

#include <filesystem>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/thumbnails.h"

namespace trackedcam::report {

/// One object for each entry of `photographs`, numbered by its place there. `state` is what the
/// colours of the page say:
///   kept     agrees with the others, and the library used it
///   spare    agrees, but the library's filter left it out
///   apart    does not agree
///   out      was left out of this run, because it did not agree in the first
///   unused   the run ended before it could be used
///   missing  no board was found, or there is no image
nlohmann::ordered_json PhotographViews(const nlohmann::ordered_json& result,
                                       const std::vector<Thumbnail>& thumbnails,
                                       const std::filesystem::path& pageFolder);

/// Whether the shoot of a result can be calibrated again: not that of a log alone.
bool CanBeRepeated(const nlohmann::ordered_json& result);

}  // namespace trackedcam::report
