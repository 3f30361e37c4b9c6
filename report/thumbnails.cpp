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

struct Form {
  int width;  // pixels
  int quality;
  bool isEnlarged;  // a narrower image
  int decoding;
};

// Decoded at a quarter of its size if the format allows it, which is ten times as fast.
constexpr Form kSmall = {360, 72, true, cv::IMREAD_REDUCED_COLOR_4};
constexpr Form kFull = {1920, 85, false, cv::IMREAD_COLOR};

std::string Encoded(const cv::Mat& image, const Form& form) {
  const double scale = static_cast<double>(form.width) / image.cols;
  cv::Mat small = image;
  if (scale < 1 || form.isEnlarged) {
    cv::resize(image, small, {}, scale, scale, cv::INTER_AREA);
  }
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", small, bytes, {cv::IMWRITE_JPEG_QUALITY, form.quality});
  return {bytes.begin(), bytes.end()};
}

// Empty if the file cannot be read: a page does without it.
std::string ImageOf(const std::string& path, const ReadPicture& read, const Form& form) {
  try {
    const std::string bytes = path.empty() ? path : read(fs::u8path(path));
    const cv::Mat image = bytes.empty()
                              ? cv::Mat()
                              : cv::imdecode(cv::Mat(1, static_cast<int>(bytes.size()), CV_8U,
                                                     const_cast<char*>(bytes.data())),
                                             form.decoding);
    return image.empty() ? std::string() : Encoded(image, form);
  } catch (const std::exception&) {
    return {};
  }
}

Thumbnail ThumbnailOf(const nlohmann::ordered_json& photograph, const ReadPicture& read) {
  std::string reprojected = ImageOf(TextAt(photograph, "/reprojectedImage"), read, kSmall);
  if (!reprojected.empty()) {
    return {std::move(reprojected), true};
  }
  return {ImageOf(TextAt(photograph, "/path"), read, kSmall), false};
}

}  // namespace

std::vector<Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result, const ReadPicture& read,
                                      bool areFull) {
  std::vector<Thumbnail> thumbnails;
  for (const nlohmann::ordered_json& photograph : ValueAt(result, "/photographs")) {
    std::string full = areFull ? ImageOf(TextAt(photograph, "/path"), read, kFull) : std::string();
    thumbnails.push_back(full.empty() ? ThumbnailOf(photograph, read)
                                      : Thumbnail{std::move(full), false});
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
