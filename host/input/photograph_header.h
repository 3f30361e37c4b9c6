// What the header of a photograph says, without decoding it.

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "host/input/byte_source.h"

namespace trackedcam::host {

enum class PhotographFormat { kJpeg, kPng, kBmp, kTiff, kWebp };

struct PhotographHeader {
  PhotographFormat format = PhotographFormat::kJpeg;
  std::uint64_t width = 0;   // pixels as stored, at least 1
  std::uint64_t height = 0;  // pixels as stored, at least 1
  int orientation = 1;       // as Exif counts, 1 to 8; the decoder turns all but 1

  /// A quarter turn, which exchanges width and height.
  bool IsTurnedAside() const { return orientation >= 5; }
};

/// What a file says that it is in its first bytes.
enum class FileKind {
  kText,          // nothing that a decoder takes for a picture
  kPhotograph,    // one of the formats above
  kOtherPicture,  // another format, whose size stands nobody knows where
};

FileKind KindOfFile(const ReadBytes& read);
FileKind KindOfFile(const std::filesystem::path& file);

/// Nothing for another format and for a header that is cut short. Safe on any bytes; few are read.
std::optional<PhotographHeader> ReadPhotographHeader(const ReadBytes& read);

/// Of bytes in memory.
std::optional<PhotographHeader> ParsePhotographHeader(std::string_view bytes);

/// Nothing as well where there is no regular file: a pipe is never opened.
std::optional<PhotographHeader> ReadPhotographHeader(const std::filesystem::path& file);

}  // namespace trackedcam::host
