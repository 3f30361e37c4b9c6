#include "report/undistorted.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>

#include <nlohmann/json.hpp>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "report/result_values.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kUndistortedWidth = 1000;  // pixels
constexpr int kUndistortedQuality = 80;

struct ImageLens {
  cv::Size size;
  cv::Matx33d matrix;
  std::vector<double> distortion;
};

std::optional<ImageLens> LensOf(const Json& result) {
  const auto number = [&](const char* path) { return NumberAt(result, path).value_or(NAN); };
  const double width = number("/imageSize/0");
  const double height = number("/imageSize/1");
  ImageLens lens;
  lens.matrix = {number("/normFocal/0") * width,
                 0,
                 number("/normCenter/0") * width,
                 0,
                 number("/normFocal/1") * height,
                 number("/normCenter/1") * height,
                 0,
                 0,
                 1};
  for (const char* path :
       {"/distortion/0", "/distortion/1", "/distortion/2", "/distortion/3", "/distortion/4"}) {
    lens.distortion.push_back(number(path));
  }
  constexpr double kMost = 1e5;  // pixels
  if (!(width >= 1 && width < kMost && height >= 1 && height < kMost) ||
      !cv::checkRange(lens.matrix) || !cv::checkRange(lens.distortion) ||
      !(lens.matrix(0, 0) > 0 && lens.matrix(1, 1) > 0)) {
    return std::nullopt;
  }
  lens.size = cv::Size(static_cast<int>(width), static_cast<int>(height));
  return lens;
}

std::vector<cv::Point2d> CornersOf(const Json& photograph) {
  std::vector<cv::Point2d> corners;
  for (const Json& corner : ValueAt(photograph, "/crossCheck/corners")) {
    const auto x = NumberAt(corner, "/0");
    const auto y = NumberAt(corner, "/1");
    if (!x || !y) {
      return {};
    }
    corners.emplace_back(*x, *y);
  }
  return corners;
}

// The place of the photograph in the list; nothing if none was used and checked.
std::optional<std::size_t> FarthestOut(const Json& photographs, const cv::Size& size) {
  std::optional<std::size_t> farthest;
  double farthestReach = 0;
  for (std::size_t place = 0; place < photographs.size(); ++place) {
    const Json& photograph = photographs[place];
    double reach = 0;
    for (const cv::Point2d& corner : CornersOf(photograph)) {
      reach = std::max(reach, cv::norm(corner - cv::Point2d(size) / 2));
    }
    if (reach > farthestReach && TextAt(photograph, "/state") == "used") {
      farthestReach = reach;
      farthest = place;
    }
  }
  return farthest;
}

cv::Mat Decoded(const std::string& path, const ReadPicture& read) {
  const std::string bytes = path.empty() ? path : read(std::filesystem::u8path(path)).bytes;
  return bytes.empty() ? cv::Mat()
                       : cv::imdecode(cv::Mat(1, static_cast<int>(bytes.size()), CV_8U,
                                              const_cast<char*>(bytes.data())),
                                      cv::IMREAD_COLOR);
}

std::vector<std::array<double, 4>> LinesThrough(const std::vector<cv::Point2d>& corners,
                                                std::size_t columns, std::size_t rows) {
  std::vector<std::array<double, 4>> lines;
  if (columns == 0 || corners.size() != columns * rows) {
    return lines;
  }
  const auto add = [&](std::size_t first, std::size_t last) {
    lines.push_back({corners[first].x, corners[first].y, corners[last].x, corners[last].y});
  };
  for (std::size_t row = 0; row < rows; ++row) {
    add(row * columns, (row + 1) * columns - 1);
  }
  for (std::size_t column = 0; column < columns; ++column) {
    add(column, (rows - 1) * columns + column);
  }
  return lines;
}

UndistortedPhotograph Made(const Json& result, const ImageLens& lens, std::size_t place,
                           const ReadPicture& read) {
  const Json& photograph = ValueAt(result, At("/photographs", place));
  const cv::Mat image = Decoded(TextAt(photograph, "/path"), read);
  UndistortedPhotograph made;
  if (image.size() != lens.size) {
    return made;
  }
  made.place = place;
  made.size = {kUndistortedWidth,
               std::max(1, kUndistortedWidth * lens.size.height / lens.size.width)};
  const cv::Size size(made.size[0], made.size[1]);
  // So far that nothing of the photograph is cut off.
  constexpr double kWhole = 1;
  const cv::Mat matrix =
      cv::getOptimalNewCameraMatrix(lens.matrix, lens.distortion, lens.size, kWhole, size);
  cv::Mat x, y, undistorted;
  cv::initUndistortRectifyMap(lens.matrix, lens.distortion, {}, matrix, size, CV_32FC1, x, y);
  cv::remap(image, undistorted, x, y, cv::INTER_LINEAR);
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", undistorted, bytes, {cv::IMWRITE_JPEG_QUALITY, kUndistortedQuality});
  made.bytes.assign(bytes.begin(), bytes.end());
  std::vector<cv::Point2d> corners;
  cv::undistortPoints(CornersOf(photograph), corners, lens.matrix, lens.distortion, {}, matrix);
  const auto count = [&](const char* path) {
    return static_cast<std::size_t>(std::clamp(NumberAt(result, path).value_or(0), 0.0, 1000.0));
  };
  made.lines = LinesThrough(corners, count("/inputs/board/0"), count("/inputs/board/1"));
  return made;
}

}  // namespace

UndistortedPhotograph MakeUndistorted(const Json& result, const ReadPicture& read) {
  try {
    const std::optional<ImageLens> lens = LensOf(result);
    const auto place = lens ? FarthestOut(ValueAt(result, "/photographs"), lens->size)
                            : std::optional<std::size_t>();
    return place ? Made(result, *lens, *place, read) : UndistortedPhotograph();
  } catch (const std::exception&) {
    return {};  // a page does without it
  }
}

}  // namespace trackedcam::report
