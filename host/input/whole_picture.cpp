#include "host/input/whole_picture.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/input/byte_source.h"
#include "host/input/photograph_header.h"

namespace trackedcam::host {
namespace {

constexpr std::uint64_t kEndLength = 12;

struct Ends {
  std::string begin;  // at most kEndLength bytes each
  std::string end;
};

Ends EndsOf(const std::filesystem::path& file, std::uint64_t size) {
  const std::uint64_t length = std::min(size, kEndLength);
  Ends ends = {std::string(length, '\0'), std::string(length, '\0')};
  std::ifstream stream(file, std::ios::binary);
  stream.read(ends.begin.data(), static_cast<std::streamsize>(length));
  stream.seekg(static_cast<std::streamoff>(size - length));
  stream.read(ends.end.data(), static_cast<std::streamsize>(length));
  return stream ? ends : Ends();
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

bool IsWholePicture(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    return false;
  }
  const std::uint64_t size = std::filesystem::file_size(file, error);
  const auto [begin, end] = EndsOf(file, error ? 0 : size);
  const std::string_view mark = begin;
  if (mark.size() < kEndLength) {
    return false;
  }
  if (mark.substr(0, 2) == "\xFF\xD8") {
    return EndsWith(end, "\xFF\xD9");
  }
  if (mark.substr(0, 8) == "\x89PNG\r\n\x1A\n") {
    return EndsWith(end, "IEND\xAE\x42\x60\x82");
  }
  if (mark.substr(0, 2) == "BM") {
    return LittleEndian(mark.substr(2, 4)) <= size;
  }
  if (mark.substr(0, 4) == "RIFF") {
    return LittleEndian(mark.substr(4, 4)) + 8 <= size;
  }
  if (mark.substr(0, 2) == "II" || mark.substr(0, 2) == "MM") {
    return ReadPhotographHeader(file).has_value();  // its directory stands behind the pixels
  }
  return true;
}

}  // namespace trackedcam::host
