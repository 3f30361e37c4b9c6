// Bytes from anywhere in a file, without reading it whole.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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

}  // namespace trackedcam::host
