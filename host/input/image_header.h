// What an image file says about itself, without decoding it.

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace trackedcam::host {

/// Reads up to `count` bytes from an offset; fewer at the end of the file.
using ReadBytes = std::function<std::string(std::uint64_t offset, std::size_t count)>;

/// The formats that photographs may have. A decoder also knows others, whose sizes are not checked.
enum class PhotographFormat { kJpeg, kPng, kBmp, kTiff, kWebp };

struct PhotographHeader {
  PhotographFormat format = PhotographFormat::kJpeg;
  std::uint64_t width = 0;   // pixels as stored, at least 1
  std::uint64_t height = 0;  // pixels as stored, at least 1
  int orientation = 1;       // Exif, 1 to 8; decoders rotate or mirror all but 1

  /// A rotation by 90 degrees, which exchanges width and height.
  bool IsRotated() const { return orientation >= 5; }
};

/// Nothing for another format or an incomplete header. Safe on any bytes; reads few of them.
std::optional<PhotographHeader> ReadPhotographHeader(const ReadBytes& read);

/// The same for bytes in memory.
std::optional<PhotographHeader> ParsePhotographHeader(std::string_view bytes);

/// The same for a file. Nothing if it is not a regular file: a pipe is never opened.
std::optional<PhotographHeader> ReadPhotographHeader(const std::filesystem::path& file);

/// Whether a JPEG has more scans than `most`: passes over the image, of which a progressive one has
/// several. Reads the file up to there, in pieces.
bool HasMoreScans(const ReadBytes& read, int most);
bool HasMoreScans(const std::filesystem::path& file, int most);

/// Whether the first bytes are those of one of the formats above, even without a complete header.
bool BeginsAsPhotograph(const ReadBytes& read);
bool BeginsAsPhotograph(const std::filesystem::path& file);

/// False for an image file that is missing, empty or cut short, as on a full disk. Reads its
/// beginning and its end only; a format without an end mark is complete if it is not empty.
bool IsCompleteImage(const std::filesystem::path& file);

}  // namespace trackedcam::host
