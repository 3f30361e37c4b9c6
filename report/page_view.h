// What the template shows of a result: its values as text, and which parts of the page there are.
// The sentences are the template's. Nothing is computed but the unit that a value is shown in.

#pragma once

#include <filesystem>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/thumbnails.h"
#include "report/undistorted.h"

namespace trackedcam::report {

/// The parameters are those of Page.
nlohmann::ordered_json PageView(const nlohmann::ordered_json& result,
                                const std::vector<Thumbnail>& thumbnails,
                                const std::filesystem::path& pageFolder,
                                const UndistortedPhotograph& undistorted = {});

/// Other runs, as Page takes them; null if there are none.
nlohmann::ordered_json RunsView(const nlohmann::ordered_json& beside);

}  // namespace trackedcam::report
