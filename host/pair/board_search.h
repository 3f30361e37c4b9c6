// Searches the board in many frames of a film, quickly: in reduced pictures, on all processors. The
// corners are good enough for poses, not for a calibration.

#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <vector>

#include "host/run/library_stages.h"

namespace trackedcam::host {

struct SearchedFrame {
  std::array<int, 2> size = {};  // of the frame, pixels; 0 if it cannot be decoded
  BoardCorners corners;          // in pixels of the frame; empty if the board was not found
};

/// @param board Inner corners: columns, rows.
/// @param progress Called after each frame with how many are done; on any thread, one at a time.
std::vector<SearchedFrame> SearchBoards(const std::vector<std::filesystem::path>& frames,
                                        const std::array<int, 2>& board,
                                        const std::function<void(std::size_t)>& progress);

}  // namespace trackedcam::host
