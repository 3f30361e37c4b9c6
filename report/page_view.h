#pragma once

#include <filesystem>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/page.h"

namespace trackedcam::report {

/// What the template shows of a result: its figures as text, and which of its parts there are.
/// Words are the template's.
nlohmann::ordered_json PageView(const nlohmann::ordered_json& result,
                                const std::vector<Thumbnail>& thumbnails,
                                const std::filesystem::path& pageFolder);

}  // namespace trackedcam::report
