#pragma once

#include <string>

#include <opencv2/core/mat.hpp>

namespace trackedcam {

/// Loads a photograph, 8-bit in blue-green-red order whatever the file holds, by its UTF-8 path.
/// The image is empty when the file cannot be opened or holds no image.
/// @throws cv::Exception when the decoder refuses the bytes, for example an empty file.
cv::Mat LoadImage(const std::string& path);

/// The same, where a photograph that the decoder refuses counts as not loaded.
cv::Mat LoadImageOrNone(const std::string& path);

/// Whether LoadImage can open the file. Says so on the console where it cannot, as LoadImage does.
bool ImageOpens(const std::string& path);

}  // namespace trackedcam
