#include "calib/reprojected_image.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "core/platform.h"
#include "core/utf8.h"

namespace trackedcam {
namespace {

void DrawDisc(cv::Mat& image, cv::Point2f centre, const cv::Scalar& colour) {
  const cv::Point pixel(static_cast<int>(centre.x), static_cast<int>(centre.y));
  cv::circle(image, pixel, 8, colour, cv::FILLED, cv::LINE_8, 0);
}

bool IsInside(cv::Point2f point, const cv::Mat& image) {
  return point.x > 0 && point.x < static_cast<float>(image.cols) && point.y > 0 &&
         point.y < static_cast<float>(image.rows);
}

}  // namespace

void DrawCorners(cv::Mat& photograph, const Corners& detected, const Corners& projected) {
  const cv::Scalar red(20, 20, 200);
  const cv::Scalar blue(200, 20, 20);
  for (std::size_t j = 0; j < projected.size(); ++j) {
    DrawDisc(photograph, detected[j], red);
    if (IsInside(projected[j], photograph)) {
      DrawDisc(photograph, projected[j], blue);
    }
  }
}

void WriteReprojectedImage(const cv::Mat& image, const std::string& folder,
                           const std::string& imagePath) {
  const std::string name = imagePath.substr(imagePath.find_last_of('\\') + 1);
  const std::string path = folder + "//Reproject_" + name;
  try {
    // Encoded in memory, because the image library cannot open every path. The extension of the
    // name selects the format.
    std::vector<unsigned char> bytes;
    cv::imencode(path, image, bytes);
    if (const File file = OpenFile(WideFromUtf8(path), "wb")) {
      std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    }
  } catch (const cv::Exception&) {
    // No result depends on the image.
  }
}

}  // namespace trackedcam
