// Stages of the library on photographs that are no calibration. They write the library's lines to
// standard output.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/corner_model.h"
#include "crosscheck/observations.h"

namespace trackedcam::host {

using BoardCorners = std::vector<Eigen::Vector2d>;  // row by row, pixels

/// One list for each photograph; empty if the board was not found, or the photograph could not be
/// loaded.
/// @param board Inner corners: columns, rows.
std::vector<BoardCorners> FindBoards(const std::vector<std::filesystem::path>& photographs,
                                     const std::array<int, 2>& board);

/// The lens that explains the corners; nothing if there is none.
/// @param imageSize Of the photographs: width, height.
std::optional<crosscheck::Lens> SolveLens(const std::vector<BoardCorners>& photographs,
                                          const crosscheck::Board& board,
                                          const std::array<int, 2>& imageSize);

}  // namespace trackedcam::host
