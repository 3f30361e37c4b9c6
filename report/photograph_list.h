// The photographs of a run, in the order that the page counts them.

#pragma once

#include <filesystem>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/page.h"

namespace trackedcam::report {

/// One object for each photograph: those of the cross-check in their order, then those that never
/// got so far. Where the result lists all rows under `photographs`, that order instead.
nlohmann::ordered_json PhotographList(const nlohmann::ordered_json& result,
                                      const std::vector<Thumbnail>& thumbnails,
                                      const std::filesystem::path& pageFolder);

}  // namespace trackedcam::report
