#pragma once

#include <string>

#include <opencv2/core/mat.hpp>

namespace trackedcam {

/// Loads a photograph by its UTF-8 path and converts it to 8 bits in blue-green-red order.
/// @return An empty image if the file cannot be opened or is not an image.
/// @throws cv::Exception if the decoder refuses the bytes, for example those of an empty file.
/// @throws std::range_error("bad conversion") if the path is not UTF-8.
cv::Mat LoadImage(const std::string& path);

/// LoadImage, but returns an empty image if the decoder refuses the bytes.
cv::Mat LoadImageOrNone(const std::string& path);

/// Whether LoadImage can open the file. If not, prints the same line as LoadImage.
bool ImageOpens(const std::string& path);

}  // namespace trackedcam
