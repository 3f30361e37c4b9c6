#include "calib/corner_detection.h"

#include <cmath>

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include "core/console.h"
#include "core/number_text.h"
#include "core/per_photograph.h"
#include "io/load_image.h"

namespace trackedcam {
namespace {

constexpr int kLeastPhotographs = 12;

cv::Mat Grey(const cv::Mat& image) {
  cv::Mat grey;
  cv::cvtColor(image, grey, cv::COLOR_BGR2GRAY, 0);
  return grey;
}

cv::Mat Reduce(const cv::Mat& image, cv::Size size) {
  cv::Mat reduced;
  cv::resize(image, reduced, size, 0, 0, cv::INTER_LINEAR);
  return reduced;
}

void Refine(const cv::Mat& grey, Corners& corners, cv::Size boardSize) {
  const cv::TermCriteria criteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.1);
  cv::cornerSubPix(grey, corners, RefinementWindow(corners, boardSize), cv::Size(-1, -1), criteria);
}

// Searches large photographs in a reduced copy, where the detector is fast and reliable, and
// refines at full resolution.
bool FindCorners(const cv::Mat& image, cv::Size imageSize, cv::Size boardSize, Corners& corners) {
  const float reduction = ReductionFactor(imageSize);
  const bool isReduced = reduction != 1.0;
  const cv::Mat grey = Grey(image);
  const cv::Mat reducedGrey =
      isReduced ? Grey(Reduce(image, ReducedSize(imageSize, reduction))) : grey;

  const int flags =
      cv::CALIB_CB_ADAPTIVE_THRESH + cv::CALIB_CB_NORMALIZE_IMAGE + cv::CALIB_CB_FAST_CHECK;
  if (!cv::findChessboardCorners(reducedGrey, boardSize, corners, flags)) {
    return false;
  }
  if (isReduced) {
    Refine(reducedGrey, corners, boardSize);
    for (cv::Point2f& corner : corners) {
      corner *= reduction;
    }
  }
  Refine(grey, corners, boardSize);
  return true;
}

void LogRawData(const RunLog& log, const std::vector<std::string>& imagePaths,
                const std::vector<TrackerRecord>& records,
                const std::vector<Corners>& imagePoints) {
  WriteRunLogLine(log, "RAW DATA START");
  for (std::size_t k = 0; k < imagePoints.size(); ++k) {
    WriteRunLogLine(log, imagePaths[k]);
    std::string line;
    for (const double number : records[k]) {
      line += (line.empty() ? "" : " ") + ToSixDecimals(number);
    }
    WriteRunLogLine(log, line);
    for (const cv::Point2f& corner : imagePoints[k]) {
      WriteRunLogLine(log, ToSixDecimals(corner.x) + " " + ToSixDecimals(corner.y));
    }
  }
  WriteRunLogLine(log, "RAW DATA END");
}

}  // namespace

float ReductionFactor(cv::Size imageSize) {
  const auto factor = static_cast<float>(imageSize.height / 720.0);
  return factor >= 2.0 ? factor : 1.0F;
}

cv::Size ReducedSize(cv::Size imageSize, float reduction) {
  const auto reduced = [reduction](int length) {
    return static_cast<int>(std::round(static_cast<float>(length) / reduction));
  };
  return {reduced(imageSize.width), reduced(imageSize.height)};
}

cv::Size RefinementWindow(const Corners& corners, cv::Size boardSize) {
  const auto halfLength = [&](std::size_t last, int steps) {
    const cv::Point2f span = corners[last] - corners[0];
    const double dx = span.x / static_cast<float>(steps);
    const double dy = span.y / static_cast<float>(steps);
    return static_cast<int>(std::sqrt(dx * dx + dy * dy) + 0.5) / 4 | 1;
  };
  const auto columns = static_cast<std::size_t>(boardSize.width);
  const auto rows = static_cast<std::size_t>(boardSize.height);
  return {halfLength(columns - 1, boardSize.width - 1),
          halfLength((rows - 1) * columns, boardSize.height - 1)};
}

void CountUnusablePhotograph(std::size_t index, int& Num_TrackerData) {
  if (static_cast<long long>(index) < Num_TrackerData) {
    --Num_TrackerData;
    Print("Num_TrackerData - 1, Num_TrackerData = " + std::to_string(Num_TrackerData) + '\n');
  }
}

ResultCode DetectCorners(RunLog log, cv::Size& imageSize, std::vector<std::string>& imagePaths,
                         std::vector<TrackerRecord>& records,
                         std::vector<BoardTemplate>& objectPoints,
                         const BoardTemplate& boardTemplate, std::vector<Corners>& imagePoints,
                         cv::Size boardSize, int& Num_TrackerData) {
  std::vector<bool> isUsable(imagePaths.size(), false);
  for (std::size_t i = 0; i < imagePaths.size(); ++i) {
    const std::string& path = imagePaths[i];
    WriteRunLogLine(log, "Process : " + path);
    const cv::Mat image = LoadImageOrNone(path);
    if (image.empty()) {
      Print(path);
      WriteRunLogLine(log, path + " Not exist!");
      CountUnusablePhotograph(i, Num_TrackerData);
      continue;
    }
    if (imageSize.width == 0) {
      imageSize = image.size();
    }
    Corners corners;
    if (!FindCorners(image, imageSize, boardSize, corners)) {
      WriteRunLogLine(log, "Read " + path + " Failed!");
      CountUnusablePhotograph(i, Num_TrackerData);
      continue;
    }
    imagePoints.push_back(corners);
    objectPoints.push_back(boardTemplate);
    isUsable[i] = true;
  }

  int usable = 0;
  for (std::size_t i = isUsable.size(); i-- > 0;) {
    if (isUsable[i]) {
      ++usable;
    } else {
      RemovePhotograph(i, records, imagePaths);
    }
  }
  if (usable < kLeastPhotographs) {
    WriteRunLogLine(log, "The amount of useful data is too small. (< " +
                             std::to_string(kLeastPhotographs) + " )");
    return LogError(log, result::kTooFewImages);
  }
  WriteRunLogLine(log, "Corner detection successful.");
  LogRawData(log, imagePaths, records, imagePoints);
  return result::kSuccess;
}

}  // namespace trackedcam
