#include "host/input/edge_width.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "host/input/photograph_file.h"

namespace trackedcam::host {
namespace {

constexpr double kLeastContrast = 40;  // grey levels of 255

std::optional<double> Median(std::vector<double> values) {
  if (values.empty()) {
    return std::nullopt;
  }
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double GreyAt(const cv::Mat& image, const cv::Point2d& at) {
  const int x = static_cast<int>(std::floor(at.x));
  const int y = static_cast<int>(std::floor(at.y));
  if (x < 0 || y < 0 || x + 1 >= image.cols || y + 1 >= image.rows) {
    return std::nan("");
  }
  const double dx = at.x - x;
  const double dy = at.y - y;
  const auto grey = [&](int row, int column) {
    return static_cast<double>(image.at<uchar>(row, column));
  };
  return (1 - dy) * ((1 - dx) * grey(y, x) + dx * grey(y, x + 1)) +
         dy * ((1 - dx) * grey(y + 1, x) + dx * grey(y + 1, x + 1));
}

// Across the border of two squares, which runs from one inner corner to the next. Nothing if the
// squares hardly differ there.
std::optional<double> WidthBetween(const cv::Mat& image, const cv::Point2d& a,
                                   const cv::Point2d& b) {
  constexpr double kReach = 0.4;  // of a square, to each side
  constexpr double kStep = 0.5;   // pixels
  const cv::Point2d along = b - a;
  const double length = cv::norm(along);
  const cv::Point2d across(-along.y / length, along.x / length);
  std::vector<double> profile;
  const auto steps = static_cast<int>(kReach * length / kStep);
  for (int step = -steps; step <= steps; ++step) {
    const double offset = step * kStep;
    double sum = 0;  // of neighbouring lines, against noise
    for (const double place : {0.4, 0.45, 0.5, 0.55, 0.6}) {
      sum += GreyAt(image, a + place * along + offset * across);
    }
    profile.push_back(sum / 5);
  }
  const auto extremes = std::minmax_element(profile.begin(), profile.end());
  const auto low = extremes.first;  // lambdas of C++17 cannot capture structured bindings
  const auto high = extremes.second;
  if (profile.size() < 4 || !(*high - *low >= kLeastContrast)) {
    return std::nullopt;
  }
  const double contrast = *high - *low;
  const auto crossing = [&](double share) {
    const double level = *low + share * contrast;
    const bool rises = high > low;
    for (std::size_t i = 1; i < profile.size(); ++i) {
      const double before = profile[i - 1] - level;
      const double now = profile[i] - level;
      if (rises ? before < 0 && now >= 0 : before >= 0 && now < 0) {
        return static_cast<double>(i - 1) + before / (before - now);
      }
    }
    return std::nan("");
  };
  const double width = kStep * std::abs(crossing(0.9) - crossing(0.1));
  return std::isfinite(width) ? std::optional(width) : std::nullopt;
}

std::array<std::optional<double>, 2> WidthsAtCorners(
    const cv::Mat& image, int columns, const std::vector<std::array<double, 2>>& corners) {
  std::array<std::vector<double>, 2> widths;
  const auto count = static_cast<int>(corners.size());
  const auto at = [&](int i) {
    const std::array<double, 2>& corner = corners[static_cast<std::size_t>(i)];
    return cv::Point2d(corner[0], corner[1]);
  };
  for (int i = 0; i < count; ++i) {
    if ((i + 1) % columns != 0 && i + 1 < count) {
      if (const auto width = WidthBetween(image, at(i), at(i + 1))) {
        widths[0].push_back(*width);
      }
    }
    if (i + columns < count) {
      if (const auto width = WidthBetween(image, at(i), at(i + columns))) {
        widths[1].push_back(*width);
      }
    }
  }
  return {Median(widths[0]), Median(widths[1])};
}

// A blurred step of the contrast c has the slope c / (sigma * sqrt(2 pi)); from 10 % to 90 % it is
// 2.56 sigma wide.
std::optional<double> WidthOfStrongEdges(const cv::Mat& image) {
  constexpr double kWidthBySlope = 2.563 / 2.507;
  constexpr int kBlocksInHeight = 8;
  constexpr std::size_t kLeastBlocks = 6;
  cv::Mat smooth;
  cv::GaussianBlur(image, smooth, {}, 1);  // against noise
  cv::Mat dx;
  cv::Mat dy;
  cv::Sobel(smooth, dx, CV_32F, 1, 0, 3, 1.0 / 8);
  cv::Sobel(smooth, dy, CV_32F, 0, 1, 3, 1.0 / 8);
  cv::Mat slope;
  cv::magnitude(dx, dy, slope);
  const int side = std::max(8, image.rows / kBlocksInHeight);
  std::vector<double> widths;
  for (int y = 0; y + side <= image.rows; y += side) {
    for (int x = 0; x + side <= image.cols; x += side) {
      const cv::Rect block(x, y, side, side);
      double least = 0;
      double most = 0;
      double steepest = 0;
      cv::minMaxLoc(smooth(block), &least, &most);
      cv::minMaxLoc(slope(block), nullptr, &steepest);
      if (most - least >= kLeastContrast && steepest > 0) {
        widths.push_back(kWidthBySlope * (most - least) / steepest);
      }
    }
  }
  return widths.size() < kLeastBlocks ? std::nullopt : Median(widths);
}

}  // namespace

std::optional<Sharpness> MeasureSharpness(const std::filesystem::path& file, int columns,
                                          const std::vector<std::array<double, 2>>& corners) {
  const cv::Mat image = DecodePhotograph(file, cv::IMREAD_GRAYSCALE);
  if (image.empty()) {
    return std::nullopt;
  }
  Sharpness sharpness;
  sharpness.heightPixels = image.rows;
  if (corners.empty() || columns < 2) {
    sharpness.edgeWidthPixels = WidthOfStrongEdges(image);
  } else {
    const auto [ofRows, ofColumns] = WidthsAtCorners(image, columns, corners);
    sharpness.edgeWidthPixels = std::max(ofRows, ofColumns);
    if (ofRows && ofColumns) {
      sharpness.byDirection = {*ofRows, *ofColumns};
    }
  }
  constexpr int kBlock = 16;  // rows that a decoder fills at once
  sharpness.repeatsLastRow =
      image.rows > kBlock &&
      cv::countNonZero(image.row(image.rows - 1) != image.row(image.rows - 1 - kBlock)) == 0;
  return sharpness;
}

bool IsUnsharp(const Sharpness& sharpness) {
  constexpr double kUnsharpWidth = 8;  // pixels, at the 720 rows in which the library searches
  constexpr double kSearchedRows = 720;
  return sharpness.edgeWidthPixels.value_or(0) >
         kUnsharpWidth * std::max<double>(sharpness.heightPixels, kSearchedRows) / kSearchedRows;
}

}  // namespace trackedcam::host
