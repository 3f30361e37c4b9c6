#include "host/verify/board_corners.h"

#include <string>

#include "calib/corner_detection.h"

namespace trackedcam::host {

std::vector<std::vector<Eigen::Vector2d>> FindBoards(
    const std::vector<std::filesystem::path>& photographs, const std::array<int, 2>& board) {
  std::vector<std::vector<Eigen::Vector2d>> found(photographs.size());
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

}  // namespace trackedcam::host
