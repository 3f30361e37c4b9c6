// Photographs: the decoder makes no more pixels than the header says, and the scans of a
// progressive JPEG are counted in a time that the size of the file bounds. Otherwise a file could
// fill the memory although its size was checked.

#include <algorithm>
#include <iostream>
#include <vector>

#include <opencv2/core/utils/logger.hpp>
#include <opencv2/imgcodecs.hpp>

#include "fuzz/fuzz.h"
#include "host/input/image_header.h"

namespace {

cv::Mat Decode(const std::uint8_t* data, std::size_t size) {
  try {
    return cv::imdecode(std::vector<std::uint8_t>(data, data + size), cv::IMREAD_COLOR);
  } catch (const cv::Exception&) {
    return {};
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  std::cerr.rdbuf(nullptr);
  const std::string_view bytes = fuzz::TextOf(data, size);
  const auto read = [&](std::uint64_t offset, std::size_t count) {
    return offset < bytes.size() ? std::string(bytes.substr(offset, count)) : std::string();
  };
  const auto header = host::ReadPhotographHeader(read);
  if (header) {
    fuzz::Require(host::BeginsAsPhotograph(read), "a header, but not a photograph");
    fuzz::Require(header->orientation >= 1 && header->orientation <= 8, "an orientation");
    constexpr std::uint64_t kMostPixels = 1 << 20;
    if (header->width > kMostPixels / header->height) {
      return 0;  // too slow to decode here; the program's own limit is higher
    }
    const cv::Mat image = Decode(data, size);
    const auto [shorter, longer] = std::minmax(header->width, header->height);
    fuzz::Require(image.empty() || static_cast<std::uint64_t>(image.rows) *
                                           static_cast<std::uint64_t>(image.cols) <=
                                       shorter * longer,
                  "more pixels than the header says");
  }
  constexpr int kScans = 64;
  fuzz::Require(!host::HasMoreScans(read, kScans) || host::HasMoreScans(read, kScans - 1),
                "more scans than 64, but not than 63");
  host::IsCompleteImage(fuzz::FileWith(bytes, "picture"));
  return 0;
}
