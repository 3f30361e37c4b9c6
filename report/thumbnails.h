#pragma once

#include <string>
#include <vector>

#include "report/page.h"

namespace trackedcam::report {

/// Small pictures for the page of a run: of the reprojected image where there is one, else of the
/// photograph itself. What cannot be read has none.
/// @param text That of a result file.
/// @throws std::invalid_argument when the text is no result.
std::vector<Thumbnail> MakeThumbnails(const std::string& text);

/// The image library makes its codecs with the first image, and destroys them when the process
/// ends: before what was made earlier. Whoever must outlive that calls this first.
void MakeCodecs();

}  // namespace trackedcam::report
