#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/thumbnails.h"

namespace trackedcam::report {

/// A photograph without the distortion of the lens found, to embed into a page.
struct UndistortedPhotograph {
  std::string bytes;             // of a JPEG file; empty without an image
  std::size_t place = 0;         // in `photographs`
  std::array<int, 2> size = {};  // pixels
  /// Straight lines through the first and the last corner of each row and column of the chart: x
  /// and y of both ends, in pixels.
  std::vector<std::array<double, 4>> lines;
};

/// Of the photograph in which the chart was seen nearest to a corner of the image, among those that
/// were used.
/// @param result A result file.
UndistortedPhotograph MakeUndistorted(const nlohmann::ordered_json& result,
                                      const ReadPicture& read);

}  // namespace trackedcam::report
