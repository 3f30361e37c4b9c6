#include "report/thumbnails.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <nlohmann/json.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "report/result_values.h"

namespace trackedcam::report {
namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 360;  // pixels
constexpr int kQuality = 72;

std::string Encoded(const cv::Mat& image) {
  const double scale = static_cast<double>(kWidth) / image.cols;
  cv::Mat small;
  cv::resize(image, small, {}, scale, scale, cv::INTER_AREA);
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", small, bytes, {cv::IMWRITE_JPEG_QUALITY, kQuality});
  return {bytes.begin(), bytes.end()};
}

// Decoded at a quarter of its size if the format allows it, which is ten times as fast. Empty if
// the file cannot be read: a page does without it.
std::string SmallImageOf(const std::string& path) {
  try {
    const fs::path file = fs::u8path(path);
    if (!fs::is_regular_file(file)) {
      return {};
    }
    std::ifstream stream(file, std::ios::binary);
    const std::vector<unsigned char> bytes(std::istreambuf_iterator<char>(stream), {});
    const cv::Mat image =
        bytes.empty() ? cv::Mat() : cv::imdecode(bytes, cv::IMREAD_REDUCED_COLOR_4);
    return image.empty() ? std::string() : Encoded(image);
  } catch (const std::exception&) {
    return {};
  }
}

Thumbnail ThumbnailOf(const nlohmann::ordered_json& photograph) {
  std::string reprojected = SmallImageOf(TextAt(photograph, "/reprojectedImage"));
  if (!reprojected.empty()) {
    return {std::move(reprojected), true};
  }
  return {SmallImageOf(TextAt(photograph, "/path")), false};
}

}  // namespace

std::vector<Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result) {
  std::vector<Thumbnail> thumbnails;
  for (const nlohmann::ordered_json& photograph : ValueAt(result, "/photographs")) {
    thumbnails.push_back(ThumbnailOf(photograph));
  }
  return thumbnails;
}

void PrepareImageLibrary() {
  std::vector<unsigned char> bytes;
  cv::imencode(".png", cv::Mat::zeros(1, 1, CV_8UC3), bytes);
  cv::imdecode(bytes, cv::IMREAD_COLOR);
  cv::parallel_for_(cv::Range(0, 2), [](const cv::Range& /*range*/) {});
}

}  // namespace trackedcam::report
