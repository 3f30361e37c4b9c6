// The corners of the board in a few photographs, found as a calibration finds them.

#pragma once

#include <array>
#include <filesystem>
#include <vector>

#include <Eigen/Core>

namespace trackedcam::host {

/// One list for each photograph, row by row; empty if the board was not found, or the photograph
/// could not be loaded. The library's stage writes its lines to standard output.
/// @param board Inner corners: columns, rows.
std::vector<std::vector<Eigen::Vector2d>> FindBoards(
    const std::vector<std::filesystem::path>& photographs, const std::array<int, 2>& board);

}  // namespace trackedcam::host
