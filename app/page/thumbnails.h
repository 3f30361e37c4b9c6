#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/page.h"

namespace trackedcam::app {

/// Small pictures for the page of a run: of the reprojected image where there is one, else of the
/// photograph itself. What cannot be read has none.
/// @param result As the result file holds it.
std::vector<report::Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result);

}  // namespace trackedcam::app
