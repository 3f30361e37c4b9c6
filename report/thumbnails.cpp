#include "report/thumbnails.h"

#include <filesystem>

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
std::string SmallImageOf(const std::string& path, const ReadPicture& read) {
  try {
    const std::string bytes = path.empty() ? path : read(fs::u8path(path));
    const cv::Mat image = bytes.empty()
                              ? cv::Mat()
                              : cv::imdecode(cv::Mat(1, static_cast<int>(bytes.size()), CV_8U,
                                                     const_cast<char*>(bytes.data())),
                                             cv::IMREAD_REDUCED_COLOR_4);
    return image.empty() ? std::string() : Encoded(image);
  } catch (const std::exception&) {
    return {};
  }
}

Thumbnail ThumbnailOf(const nlohmann::ordered_json& photograph, const ReadPicture& read) {
  std::string reprojected = SmallImageOf(TextAt(photograph, "/reprojectedImage"), read);
  if (!reprojected.empty()) {
    return {std::move(reprojected), true};
  }
  return {SmallImageOf(TextAt(photograph, "/path"), read), false};
}

}  // namespace

std::vector<Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result,
                                      const ReadPicture& read) {
  std::vector<Thumbnail> thumbnails;
  for (const nlohmann::ordered_json& photograph : ValueAt(result, "/photographs")) {
    thumbnails.push_back(ThumbnailOf(photograph, read));
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
