// Helpers of the fuzzers. A fuzzer tests one kind of input from outside. It stops at a crash, at a
// sanitizer's finding, or if two readers of the same bytes disagree.

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

/// Ends the run if the condition does not hold.
inline void Require(bool holds, const std::string& what) {
  if (!holds) {
    std::fprintf(stderr, "wrong: %s\n", what.c_str());
    std::abort();
  }
}

/// Writes a file with this content in a folder of this process.
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

/// Takes numbers from the front of the bytes; zeros when no bytes are left.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool IsEmpty() const { return size_ == 0; }

  template <class Value>
  Value Take() {
    Value number = {};
    const std::size_t length = size_ < sizeof number ? size_ : sizeof number;
    std::memcpy(&number, data_, length);
    data_ += length;
    size_ -= length;
    return number;
  }

  /// Usually a number of ordinary size, sometimes one of arbitrary bits.
  double Number() {
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
