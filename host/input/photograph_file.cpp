#include "host/input/photograph_file.h"

#include <cstdint>
#include <exception>
#include <system_error>

#include <opencv2/imgcodecs.hpp>

#include "host/text/files.h"

namespace trackedcam::host {
namespace {

constexpr std::uint64_t kMostPhotographPixels = 200000000;
constexpr std::uint64_t kMostPixelsInParallel = 50000000;
constexpr std::uint64_t kLongestSide = 1 << 20;  // a longer one ends the decoder, and so the run

constexpr int kMostScans = 64;
constexpr std::uint64_t kBytesPerPixel = 8;           // four channels of 16 bits
constexpr std::uint64_t kBytesBesides = 64ULL << 20;  // of previews and short films in the file

}  // namespace

bool IsHuge(const PhotographHeader& header) {
  return header.width > kMostPhotographPixels / header.height || header.width > kLongestSide ||
         header.height > kLongestSide;
}

bool IsCostly(const std::filesystem::path& file, const PhotographHeader& header) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return error || size > kBytesBesides + kBytesPerPixel * header.width * header.height ||
         (header.format == PhotographFormat::kJpeg && HasMoreScans(file, kMostScans));
}

bool IsLarge(const PhotographHeader& header) {
  return header.width > kMostPixelsInParallel / header.height;
}

PhotographFile ReadPhotograph(const std::filesystem::path& file) {
  try {
    const auto header = ReadPhotographHeader(file);
    const bool isTaken = header && !IsHuge(*header) && !IsCostly(file, *header);
    return isTaken ? PhotographFile{ReadFile(file), IsLarge(*header)} : PhotographFile();
  } catch (const std::exception&) {
    return {};
  }
}

cv::Mat DecodePhotograph(const std::filesystem::path& file, int mode) {
  try {
    std::string bytes = ReadPhotograph(file).bytes;
    return bytes.empty()
               ? cv::Mat()
               : cv::imdecode(cv::Mat(1, static_cast<int>(bytes.size()), CV_8U, bytes.data()),
                              mode);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace trackedcam::host
