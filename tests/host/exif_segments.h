// Pictures with orientation tags, put together by hand.

#pragma once

#include <cstdint>
#include <string>

namespace trackedcam::test {

inline std::string BigEndian(std::uint32_t number, int bytes) {
  std::string text;
  for (int i = bytes - 1; i >= 0; --i) {
    text += static_cast<char>(number >> (8 * i));
  }
  return text;
}

inline std::string LittleEndian(std::uint32_t number, int bytes) {
  const std::string text = BigEndian(number, bytes);
  return {text.rbegin(), text.rend()};
}

/// A directory of two entries: a width, and the orientation.
inline std::string ExifTiff(int orientation, bool isBigEndian = false) {
  const auto number = isBigEndian ? BigEndian : LittleEndian;
  const auto entry = [&](std::uint32_t tag, std::uint32_t value) {
    return number(tag, 2) + number(3, 2) + number(1, 4) + number(value, 2) + number(0, 2);
  };
  return (isBigEndian ? "MM" : "II") + number(42, 2) + number(8, 4) + number(2, 2) +
         entry(256, 99) + entry(274, static_cast<std::uint32_t>(orientation)) + number(0, 4);
}

inline std::string JpegSegment(int marker, const std::string& content) {
  return BigEndian(0xFF00U + static_cast<std::uint32_t>(marker), 2) +
         BigEndian(static_cast<std::uint32_t>(content.size() + 2), 2) + content;
}

/// Behind the picture's first marker.
inline std::string WithJpegExif(const std::string& jpeg, const std::string& tiff) {
  return jpeg.substr(0, 2) + JpegSegment(0xE1, std::string("Exif\0\0", 6) + tiff) + jpeg.substr(2);
}

/// Behind the first chunk. Of the check sum, four bytes that nobody looks at here.
inline std::string WithPngExif(const std::string& png, const std::string& tiff) {
  return png.substr(0, 33) + BigEndian(static_cast<std::uint32_t>(tiff.size()), 4) + "eXIf" + tiff +
         "????" + png.substr(33);
}

/// A canvas before the picture, and the tags behind it.
inline std::string WithWebpExif(const std::string& webp, int width, int height,
                                const std::string& tiff) {
  const auto less = [](int number) {
    return LittleEndian(static_cast<std::uint32_t>(number - 1), 3);
  };
  const std::string body = "WEBPVP8X" + LittleEndian(10, 4) + LittleEndian(8, 4) + less(width) +
                           less(height) + webp.substr(12) + "EXIF" +
                           LittleEndian(static_cast<std::uint32_t>(tiff.size()), 4) + tiff;
  return "RIFF" + LittleEndian(static_cast<std::uint32_t>(body.size()), 4) + body;
}

}  // namespace trackedcam::test
