// Photographs: what their headers promise is what the decoder makes, and what is taken for no
// picture makes none. Else a file could fill the memory although its size was asked for.

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
  using host::FileKind;
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  std::cerr.rdbuf(nullptr);
  const std::string_view bytes = fuzz::TextOf(data, size);
  const auto read = [&](std::uint64_t offset, std::size_t count) {
    return offset < bytes.size() ? std::string(bytes.substr(offset, count)) : std::string();
  };
  const auto header = host::ReadPhotographHeader(read);
  const FileKind kind = host::KindOfFile(read);
  if (header) {
    fuzz::Require(kind == FileKind::kPhotograph, "a header of a photograph");
    fuzz::Require(header->orientation >= 1 && header->orientation <= 8, "an orientation");
    constexpr std::uint64_t kMostPixels = 1 << 20;
    if (header->width > kMostPixels / header->height) {
      return 0;  // the program leaves out such ones, from a larger number on
    }
    const cv::Mat image = Decode(data, size);
    const auto [shorter, longer] = std::minmax(header->width, header->height);
    fuzz::Require(image.empty() || static_cast<std::uint64_t>(image.rows) *
                                           static_cast<std::uint64_t>(image.cols) <=
                                       shorter * longer,
                  "no more pixels than the header says");
  } else if (kind == FileKind::kText) {
    fuzz::Require(Decode(data, size).empty(), "no picture where no format is known");
  }
  host::IsCompleteImage(fuzz::FileWith(bytes, "picture"));
  return 0;
}
