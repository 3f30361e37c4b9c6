// What the targets have in common. A target looks at one kind of input that others write, and stops
// where the program would: at a crash, at a sanitizer's finding, or where two readers of the same
// bytes disagree.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace trackedcam::fuzz {

/// The bytes as text.
inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the run where something that must hold does not.
inline void Require(bool holds, const std::string& what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what.c_str());
    std::abort();
  }
}

/// A file of this process alone, with the content given.
inline std::filesystem::path FileWith(std::string_view content, const std::string& name) {
  static const std::filesystem::path folder = [] {
    std::string form = (std::filesystem::temp_directory_path() / "trackedcam_fuzz_XXXXXX").string();
    Require(mkdtemp(form.data()) != nullptr, "a temporary folder");
    return std::filesystem::path(form);
  }();
  std::filesystem::path file = folder / name;
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
  return file;
}

/// Takes numbers off the front of the bytes; zeros where there are none left.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool IsEmpty() const { return size_ == 0; }

  template <class Number>
  Number Take() {
    Number number = {};
    const std::size_t length = size_ < sizeof number ? size_ : sizeof number;
    std::memcpy(&number, data_, length);
    data_ += length;
    size_ -= length;
    return number;
  }

  /// A number of ordinary size most of the time, of any bits else.
  double Figure() {
    const auto kind = Take<std::uint8_t>();
    if (kind == 0) {
      return Take<double>();
    }
    return static_cast<double>(Take<std::int16_t>()) / (kind < 128 ? 1024.0 : 16.0);
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

}  // namespace trackedcam::fuzz
