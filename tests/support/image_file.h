// Reads and writes images with paths that are not ASCII, which the image library cannot open on
// every system.

#pragma once

#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>

#include "support/stage_test.h"

namespace trackedcam::test {

inline cv::Mat ReadImage(const std::string& path, int flags = cv::IMREAD_COLOR) {
  const std::string content = ReadFile(path);
  return cv::imdecode(std::vector<unsigned char>(content.begin(), content.end()), flags);
}

/// Writes an image and creates its folder.
/// @return The path.
inline std::string WriteImage(const std::string& path, const cv::Mat& image) {
  std::vector<unsigned char> bytes;
  cv::imencode(path, image, bytes);
  std::filesystem::create_directories(std::filesystem::u8path(path).parent_path());
  WriteFile(path, {bytes.begin(), bytes.end()});
  return path;
}

}  // namespace trackedcam::test
