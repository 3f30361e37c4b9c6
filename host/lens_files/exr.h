// Writes OpenEXR files: pictures of 32-bit floats.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trackedcam::host {

struct FloatChannel {
  std::string name;                            // such as R
  const std::vector<float>* values = nullptr;  // row by row from the top; null: zeros
};

/// The content of a file, compressed without loss.
/// @param channels In alphabetical order, as the format has them.
std::string ExrBytes(int width, int height, const std::vector<FloatChannel>& channels,
                     const std::string& comments);

}  // namespace trackedcam::host
