#include "host/run/library_stages.h"

#include <string>

#include <opencv2/core.hpp>

#include "calib/corner_detection.h"
#include "calib/intrinsic_calibration.h"

namespace trackedcam::host {

std::vector<BoardCorners> FindBoards(const std::vector<std::filesystem::path>& photographs,
                                     const std::array<int, 2>& board) {
  std::vector<BoardCorners> found(photographs.size());
  std::vector<std::string> paths;
  std::vector<TrackerRecord> records;  // here, each photograph's index
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    paths.push_back(photographs[i].u8string());
    records.push_back({static_cast<double>(i)});
  }
  cv::Size imageSize;
  std::vector<BoardTemplate> templates;
  std::vector<Corners> corners;
  auto count = static_cast<int>(paths.size());
  // Its code says that there are fewer photographs than a calibration needs.
  DetectCorners({}, imageSize, paths, records, templates, {}, corners, {board[0], board[1]}, count);
  for (std::size_t k = 0; k < corners.size(); ++k) {
    auto& own = found.at(static_cast<std::size_t>(records.at(k).front()));
    for (const cv::Point2f& corner : corners[k]) {
      own.emplace_back(corner.x, corner.y);
    }
  }
  return found;
}

std::optional<crosscheck::Lens> SolveLens(const std::vector<BoardCorners>& photographs,
                                          const crosscheck::Board& board,
                                          const std::array<int, 2>& imageSize) {
  BoardTemplate points;
  for (const Eigen::Vector3d& point : board.Points()) {
    points.emplace_back(point.cast<float>().x(), point.cast<float>().y(), 0.0F);
  }
  std::vector<Corners> corners;
  for (const BoardCorners& photograph : photographs) {
    Corners& own = corners.emplace_back();
    for (const Eigen::Vector2d& corner : photograph) {
      own.emplace_back(corner.cast<float>().x(), corner.cast<float>().y());
    }
  }
  const std::vector<BoardTemplate> templates(corners.size(), points);
  double rms = 0;
  cv::Mat camera;
  cv::Mat distortion;
  cv::Mat rotations;
  cv::Mat translations;
  constexpr float kAnyError = 1e9F;
  auto count = static_cast<int>(corners.size());
  try {
    CalibrateIntrinsics({}, rms, {imageSize[0], imageSize[1]}, camera, distortion, rotations,
                        translations, templates, corners, kAnyError, count);
  } catch (const cv::Exception&) {
    return std::nullopt;  // too few views, or all alike
  }
  return crosscheck::Lens{imageSize[0],
                          imageSize[1],
                          camera.at<double>(0, 0),
                          camera.at<double>(1, 1),
                          camera.at<double>(0, 2),
                          camera.at<double>(1, 2),
                          distortion.at<double>(0),
                          distortion.at<double>(1)};
}

}  // namespace trackedcam::host
