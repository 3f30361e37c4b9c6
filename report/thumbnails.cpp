#include "report/thumbnails.h"

#include <filesystem>
#include <mutex>

#include <nlohmann/json.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "host/parallel.h"
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

class Maker {
 public:
  Maker(const ReadPicture& read, bool areFull) : read_(read), areFull_(areFull) {}

  Thumbnail ThumbnailOf(const nlohmann::ordered_json& photograph) {
    const std::string path = TextAt(photograph, "/path");
    if (std::string full = areFull_ ? ImageOf(path, kFull) : std::string(); !full.empty()) {
      return {std::move(full), false};
    }
    std::string reprojected = ImageOf(TextAt(photograph, "/reprojectedImage"), kSmall);
    if (!reprojected.empty()) {
      return {std::move(reprojected), true};
    }
    return {ImageOf(path, kSmall), false};
  }

 private:
  // Empty if the file cannot be read: a page does without it.
  std::string ImageOf(const std::string& path, const Form& form) {
    try {
      const Picture picture = path.empty() ? Picture() : read_(fs::u8path(path));
      if (picture.bytes.empty()) {
        return {};
      }
      const auto alone =
          picture.isLarge ? std::unique_lock<std::mutex>(large_) : std::unique_lock<std::mutex>();
      const cv::Mat image = cv::imdecode(cv::Mat(1, static_cast<int>(picture.bytes.size()), CV_8U,
                                                 const_cast<char*>(picture.bytes.data())),
                                         form.decoding);
      return image.empty() ? std::string() : Encoded(image, form);
    } catch (const std::exception&) {
      return {};
    }
  }

  const ReadPicture& read_;
  const bool areFull_;
  std::mutex large_;
};

}  // namespace

std::vector<Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result, const ReadPicture& read,
                                      bool areFull) {
  std::vector<const nlohmann::ordered_json*> photographs;
  for (const nlohmann::ordered_json& photograph : ValueAt(result, "/photographs")) {
    photographs.push_back(&photograph);
  }
  std::vector<Thumbnail> thumbnails(photographs.size());
  Maker maker(read, areFull);
  host::ForEachInParallel(photographs.size(), [&](std::size_t i) {
    thumbnails[i] = maker.ThumbnailOf(*photographs[i]);
  });
  return thumbnails;
}

void PrepareImageLibrary() {
  std::vector<unsigned char> bytes;
  cv::imencode(".png", cv::Mat::zeros(1, 1, CV_8UC3), bytes);
  cv::imdecode(bytes, cv::IMREAD_COLOR);
  cv::parallel_for_(cv::Range(0, 2), [](const cv::Range& /*range*/) {});
}

}  // namespace trackedcam::report
