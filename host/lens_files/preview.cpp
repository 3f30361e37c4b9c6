#include "host/lens_files/preview.h"

#include <cstdint>
#include <stdexcept>
#include <vector>
#include <zlib.h>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "host/engines/origin.h"
#include "host/input/image_header.h"
#include "host/input/photograph_file.h"
#include "host/lens_files/stmap.h"

namespace trackedcam::host {
namespace {

// Where the pixels come from, as the image library counts them: from the first one's centre.
cv::Mat Places(const StMap& map, const cv::Size& source) {
  cv::Mat places(map.height, map.width, CV_32FC2);
  std::size_t i = 0;
  for (auto place = places.begin<cv::Vec2f>(); place != places.end<cv::Vec2f>(); ++place, ++i) {
    *place = {map.s[i] * static_cast<float>(source.width) - 0.5F,
              (1 - map.t[i]) * static_cast<float>(source.height) - 0.5F};
  }
  return places;
}

std::string BigEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(static_cast<unsigned char>(number >> shift));
  }
  return bytes;
}

// A chunk of text, by which the program knows its own pictures.
std::string CommentChunk() {
  const std::string chunk = std::string("tEXtComment") + '\0' + kWrittenBy + TRACKEDCAM_VERSION;
  const auto sum =
      crc32(0, reinterpret_cast<const Bytef*>(chunk.data()), static_cast<uInt>(chunk.size()));
  constexpr std::uint32_t kTypeLength = 4;
  return BigEndian(static_cast<std::uint32_t>(chunk.size()) - kTypeLength) + chunk +
         BigEndian(static_cast<std::uint32_t>(sum));
}

}  // namespace

std::string UndistortedPng(const LensModel& lens, const std::array<int, 2>& undistortedSize,
                           const std::filesystem::path& photograph) {
  // The header first: it is read of regular files only, and a picture of any size is not decoded.
  const auto header = ReadPhotographHeader(photograph);
  const bool isSize =
      header && header->width * header->height == static_cast<std::uint64_t>(lens.width) *
                                                      static_cast<std::uint64_t>(lens.height);
  const cv::Mat image = isSize ? DecodePhotograph(photograph, cv::IMREAD_COLOR) : cv::Mat();
  if (!header || (isSize && image.empty())) {
    throw std::runtime_error(photograph.u8string() + " is not a photograph that can be read");
  }
  if (image.cols != lens.width || image.rows != lens.height) {
    throw std::runtime_error(photograph.u8string() + " does not have the size of the calibrated " +
                             "photographs");
  }
  cv::Mat undistorted;
  cv::remap(image, undistorted, Places(UndistortMap(lens, undistortedSize), image.size()), {},
            cv::INTER_CUBIC);
  std::vector<unsigned char> bytes;
  cv::imencode(".png", undistorted, bytes);
  std::string png(bytes.begin(), bytes.end());
  constexpr std::size_t kEndOfImageHeader = 33;
  return png.insert(kEndOfImageHeader, CommentChunk());
}

}  // namespace trackedcam::host
