// A report in, one page out that a browser shows without anything beside it.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::report {

/// A small picture to embed: of the reprojected image where there is one, else of the photograph.
struct Thumbnail {
  std::string photograph;  // as the report names it
  std::string bytes;       // of a JPEG or PNG file; anything else is left out
};

/// The page of a run, UTF-8 HTML.
/// @param result The text of a result file. Keys that are missing, null or of the wrong kind leave
///   their place on the page empty.
/// @param thumbnails At most one for each photograph, in any order; those of photographs that the
///   result does not name are left out.
/// @param pageFolder Where the page will lie. Links to images and the log are relative to it.
/// @throws std::invalid_argument when the text is no result.
std::string Page(const std::string& result, const std::vector<Thumbnail>& thumbnails,
                 const std::filesystem::path& pageFolder);

}  // namespace trackedcam::report
