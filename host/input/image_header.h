// Bytes from anywhere in a file, without reading it whole.

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace trackedcam::host {

/// The bytes from an offset on: so many, or fewer where the file ends.
using ReadBytes = std::function<std::string(std::uint64_t offset, std::size_t count)>;

/// The whole number that up to eight bytes are, the highest first.
inline std::uint64_t BigEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes) {
    number = (number << 8) | static_cast<unsigned char>(byte);
  }
  return number;
}

/// The same with the lowest first.
inline std::uint64_t LittleEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) {
    number = (number << 8) | static_cast<unsigned char>(bytes[i - 1]);
  }
  return number;
}

// The first directory of a TIFF file. Exif is one too, inside a picture of another format.

struct TiffTags {
  std::uint64_t width = 0;   // pixels; 0 where there is no such tag
  std::uint64_t height = 0;  // pixels; 0 where there is no such tag
  int orientation = 1;       // 1 to 8; 1: the pixels stay as they are
};

/// @param begin Where "II" or "MM" stands; offsets in the directory count from there.
/// @return Nothing where there is no directory.
std::optional<TiffTags> ReadTiffTags(const ReadBytes& read, std::uint64_t begin);

// What the header of a photograph says, without decoding it.

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

/// False for a picture file that is missing, empty or cut short, as on a disk that became full.
/// Looks at its beginning and its end, and decodes nothing; a format without a mark at its end is
/// whole when it is not empty.
bool IsWholePicture(const std::filesystem::path& file);

}  // namespace trackedcam::host
