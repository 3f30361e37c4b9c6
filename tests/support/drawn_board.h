// Images of a chessboard, drawn as seen from straight above.

#pragma once

#include <opencv2/imgproc.hpp>

namespace trackedcam::test {

/// A board of (cols + 1) x (rows + 1) squares of `square` pixels on white. Its first inner corner
/// is between the pixels first.x - 1 and first.x, and likewise in y.
inline cv::Mat DrawnBoard(cv::Size image, cv::Point first, int square, int cols, int rows) {
  cv::Mat picture(image, CV_8UC3, cv::Scalar::all(255));
  for (int r = 0; r <= rows; ++r) {
    for (int c = 0; c <= cols; ++c) {
      if ((r + c) % 2 == 0) {
        const cv::Point corner = first + cv::Point((c - 1) * square, (r - 1) * square);
        cv::rectangle(picture, cv::Rect(corner, cv::Size(square, square)), cv::Scalar::all(0),
                      cv::FILLED);
      }
    }
  }
  return picture;
}

}  // namespace trackedcam::test
