// A photograph without its distortion, to look at.

#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "host/lens_files/lens_model.h"

namespace trackedcam::host {

/// The undistorted picture of a photograph as a PNG file.
/// @param undistortedSize As from UndistortedSize.
/// @throws std::runtime_error if the photograph cannot be read or is not of the lens's size.
std::string UndistortedPng(const LensModel& lens, const std::array<int, 2>& undistortedSize,
                           const std::filesystem::path& photograph);

}  // namespace trackedcam::host
