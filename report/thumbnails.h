#pragma once

#include <string>
#include <vector>

#include "report/page.h"

namespace trackedcam::report {

/// Small pictures for the page of a run: of the reprojected image where there is one, else of the
/// photograph itself. What cannot be read has none.
/// @param result The text of a result file.
/// @throws std::invalid_argument when the text is no result.
std::vector<Thumbnail> MakeThumbnails(const std::string& result);

}  // namespace trackedcam::report
