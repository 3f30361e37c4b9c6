// The first directory of a TIFF file. Exif is one too, inside a picture of another format.

#pragma once

#include <cstdint>
#include <optional>

#include "host/input/byte_source.h"

namespace trackedcam::host {

struct TiffTags {
  std::uint64_t width = 0;   // pixels; 0 where there is no such tag
  std::uint64_t height = 0;  // pixels; 0 where there is no such tag
  int orientation = 1;       // 1 to 8; 1: the pixels stay as they are
};

/// @param begin Where "II" or "MM" stands; offsets in the directory count from there.
/// @return Nothing where there is no directory.
std::optional<TiffTags> ReadTiffTags(const ReadBytes& read, std::uint64_t begin);

}  // namespace trackedcam::host
