#include "report/thumbnails.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "report/result_values.h"

namespace trackedcam::report {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

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

// Decoded at a quarter of its size where the format can do that, which is ten times as fast.
std::string ThumbnailOf(const fs::path& file) {
  try {
    if (!fs::is_regular_file(file)) {
      return {};
    }
    std::ifstream stream(file, std::ios::binary);
    const std::vector<unsigned char> bytes(std::istreambuf_iterator<char>(stream), {});
    const cv::Mat image =
        bytes.empty() ? cv::Mat() : cv::imdecode(bytes, cv::IMREAD_REDUCED_COLOR_4);
    return image.empty() ? std::string() : Encoded(image);
  } catch (const std::exception&) {  // a page does without it
    return {};
  }
}

std::vector<std::string> Texts(const Json& result, const char* key) {
  std::vector<std::string> texts;
  const auto list = result.find(key);
  if (list != result.end() && list->is_array()) {
    for (const Json& text : *list) {
      texts.push_back(text.is_string() ? text.get<std::string>() : std::string());
    }
  }
  return texts;
}

// The reprojected images stand in the order of the photographs that were used.
std::map<std::string, std::string> ReprojectedImages(const Json& result) {
  const std::vector<std::string> used = Texts(result, "used");
  const std::vector<std::string> images = Texts(result, "images");
  std::map<std::string, std::string> byPhotograph;
  for (std::size_t i = 0; i < used.size() && used.size() == images.size(); ++i) {
    byPhotograph[used[i]] = images[i];
  }
  return byPhotograph;
}

}  // namespace

std::vector<Thumbnail> MakeThumbnails(const std::string& text) {
  const Json result = ParseResult(text);
  const Json::json_pointer folder("/inputs/workingFolder");
  const fs::path workingFolder = result.contains(folder) && result.at(folder).is_string()
                                     ? fs::u8path(result.at(folder).get<std::string>())
                                     : fs::path();
  const std::map<std::string, std::string> images = ReprojectedImages(result);
  std::vector<Thumbnail> thumbnails;
  for (const std::string& photograph : Texts(result, "photographs")) {
    const auto image = images.find(photograph);
    const fs::path file =
        image == images.end() ? workingFolder / fs::u8path(photograph) : fs::u8path(image->second);
    thumbnails.push_back({photograph, ThumbnailOf(file)});
  }
  return thumbnails;
}

void MakeCodecs() {
  std::vector<unsigned char> bytes;
  cv::imencode(".png", cv::Mat::zeros(1, 1, CV_8UC3), bytes);
  cv::imdecode(bytes, cv::IMREAD_COLOR);
}

}  // namespace trackedcam::report
