// ST maps: pictures that say for each pixel where in another picture it comes from.
//
// The other picture's bottom left corner is (0, 0) and its top right corner (1, 1), so that the
// centre of its first pixel, at the top left, is half a pixel inside. The positions are those of
// the pixels' centres.

#pragma once

#include <array>
#include <optional>
#include <vector>

#include "host/lens_files/lens_model.h"

namespace trackedcam::host {

struct StMap {
  int width = 0;         // pixels
  int height = 0;        // pixels
  std::vector<float> s;  // to the right, row by row from the top
  std::vector<float> t;  // upwards
};

/// A factor of the picture's size above which a map is refused.
constexpr double kMostOverscan = 4;

/// Size of the undistorted picture, pixels. Its middle is that of the photograph, its focal lengths
/// are the photograph's, and it is larger by an even number of pixels in each direction.
/// @param overscan How many times the size of the photograph it is at least, 1 to kMostOverscan;
///        nothing: as many as it needs to show all that the photograph shows.
/// @throws InputError if there is no such picture.
std::array<int, 2> UndistortedSize(const LensModel& lens, std::optional<double> overscan);

/// For each pixel of the undistorted picture its place in the photograph, outside where the
/// photograph does not show it.
StMap UndistortMap(const LensModel& lens, const std::array<int, 2>& undistortedSize);

/// For each pixel of the photograph its place in the undistorted picture, outside where the picture
/// is too small.
/// @throws InputError if the lens folds the picture, so that a pixel has none.
StMap DistortMap(const LensModel& lens, const std::array<int, 2>& undistortedSize);

}  // namespace trackedcam::host
