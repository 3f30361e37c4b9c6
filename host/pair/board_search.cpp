#include "host/pair/board_search.h"

#include <mutex>
#include <string>

#include <opencv2/calib3d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "host/input/photograph_file.h"
#include "host/parallel.h"

namespace trackedcam::host {
namespace {

constexpr int kEnoughRows = 540;  // to see a board

// A decoder reduces a JPEG by 2 or 4 without decoding all of it.
int ReductionFor(const PhotographHeader& header) {
  const auto rows = static_cast<int>(std::min(header.width, header.height));
  return rows >= 4 * kEnoughRows ? 4 : rows >= 2 * kEnoughRows ? 2 : 1;
}

cv::ImreadModes ModeOf(int reduction) {
  return reduction == 4   ? cv::IMREAD_REDUCED_GRAYSCALE_4
         : reduction == 2 ? cv::IMREAD_REDUCED_GRAYSCALE_2
                          : cv::IMREAD_GRAYSCALE;
}

SearchedFrame Search(const std::filesystem::path& file, const cv::Size& board) {
  SearchedFrame searched;
  const auto header = ReadPhotographHeader(file);
  const cv::Mat image = header ? DecodePhotograph(file, ModeOf(ReductionFor(*header))) : cv::Mat();
  if (image.empty()) {
    return searched;
  }
  std::vector<cv::Point2f> corners;
  try {
    if (cv::findChessboardCorners(image, board, corners,
                                  cv::CALIB_CB_ADAPTIVE_THRESH | cv::CALIB_CB_NORMALIZE_IMAGE |
                                      cv::CALIB_CB_FAST_CHECK)) {
      cv::cornerSubPix(image, corners, {4, 4}, {-1, -1},
                       {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 20, 0.01});
    } else {
      corners.clear();
    }
  } catch (const cv::Exception&) {
    return searched;
  }
  const bool isTurned = header->IsRotated();
  const auto width = static_cast<int>(isTurned ? header->height : header->width);
  const auto height = static_cast<int>(isTurned ? header->width : header->height);
  searched.size = {width, height};
  const double x = static_cast<double>(width) / image.cols;
  const double y = static_cast<double>(height) / image.rows;
  for (const cv::Point2f& corner : corners) {
    searched.corners.emplace_back(x * (corner.x + 0.5) - 0.5, y * (corner.y + 0.5) - 0.5);
  }
  return searched;
}

}  // namespace

std::vector<SearchedFrame> SearchBoards(const std::vector<std::filesystem::path>& frames,
                                        const std::array<int, 2>& board,
                                        const std::function<void(std::size_t)>& progress) {
  std::vector<SearchedFrame> searched(frames.size());
  std::mutex mutex;
  std::size_t done = 0;
  ForEachInParallel(frames.size(), [&](std::size_t i) {
    searched[i] = Search(frames[i], {board[0], board[1]});
    const std::lock_guard<std::mutex> lock(mutex);
    progress(++done);
  });
  return searched;
}

}  // namespace trackedcam::host
