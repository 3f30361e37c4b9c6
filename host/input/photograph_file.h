// Which photographs are decoded: a small file can ask for any amount of memory and time.

#pragma once

#include <filesystem>
#include <string>

#include <opencv2/core/mat.hpp>

#include "host/input/image_header.h"

namespace trackedcam::host {

/// More than 200 megapixels, or a side that no decoder takes.
bool IsHuge(const PhotographHeader& header);

/// Whether the file has many times the bytes of its pixels, or a JPEG more than 64 scans, each of
/// which goes over the whole image again. Cameras write about ten.
bool IsCostly(const std::filesystem::path& file, const PhotographHeader& header);

/// More than 50 megapixels: only one such photograph is decoded at a time.
bool IsLarge(const PhotographHeader& header);

struct PhotographFile {
  std::string bytes;  // to decode; empty if it is huge, costly or cannot be read
  bool isLarge = false;
};

PhotographFile ReadPhotograph(const std::filesystem::path& file);

/// Empty if it must not or cannot be decoded.
/// @param mode One of cv::ImreadModes.
cv::Mat DecodePhotograph(const std::filesystem::path& file, int mode);

}  // namespace trackedcam::host
