// Photographs of a real chessboard from the examples of the image library, and matching tracker
// poses.

#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Geometry>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include "support/image_file.h"

namespace trackedcam::test {

/// The board in the photographs. The edge of its squares is unknown; the tests assume this one,
/// metres.
inline const cv::Size kRealBoard(9, 6);
constexpr double kRealSquare = 0.025;

/// The photographs in the folder: left01.jpg to left14.jpg, of which one does not exist.
inline std::vector<std::filesystem::path> RealPhotographs(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> photographs;
  for (int i = 1; i <= 14; ++i) {
    const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
    const auto path = std::filesystem::absolute(folder) / ("left" + number + ".jpg");
    if (std::filesystem::exists(path)) {
      photographs.push_back(path);
    }
  }
  return photographs;
}

/// Transform_Cam_Chart of each photograph, solved by the image library alone.
inline std::vector<Eigen::Isometry3d> RealChartPoses(
    const std::vector<std::filesystem::path>& photographs) {
  std::vector<cv::Point3f> board;
  for (int i = 0; i < kRealBoard.area(); ++i) {
    board.emplace_back(static_cast<float>(i % kRealBoard.width * kRealSquare),
                       static_cast<float>(i / kRealBoard.width * kRealSquare), 0.0F);
  }
  std::vector<std::vector<cv::Point2f>> corners;
  for (const auto& photograph : photographs) {
    const cv::Mat grey = ReadImage(photograph.u8string(), cv::IMREAD_GRAYSCALE);
    EXPECT_TRUE(cv::findChessboardCorners(grey, kRealBoard, corners.emplace_back()));
    cv::cornerSubPix(grey, corners.back(), {5, 5}, {-1, -1}, {cv::TermCriteria::COUNT, 50, 0});
  }
  cv::Mat cameraMatrix;
  cv::Mat distortion;
  std::vector<cv::Vec3d> rotations;
  std::vector<cv::Vec3d> translations;
  cv::calibrateCamera(std::vector<std::vector<cv::Point3f>>(corners.size(), board), corners,
                      {640, 480}, cameraMatrix, distortion, rotations, translations,
                      cv::CALIB_ZERO_TANGENT_DIST | cv::CALIB_FIX_K3);
  std::vector<Eigen::Isometry3d> poses;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Eigen::Vector3d turn(rotations[i][0], rotations[i][1], rotations[i][2]);
    Eigen::Isometry3d pose(Eigen::AngleAxisd(turn.norm(), turn.normalized()));
    pose.pretranslate(Eigen::Vector3d(translations[i][0], translations[i][1], translations[i][2]));
    poses.push_back(pose);
  }
  return poses;
}

/// The fields of a tracker's reported pose in a row, each with a comma before it.
/// @param pose The tracker's pose after the axis fix.
inline std::string ReportedFields(const Eigen::Isometry3d& pose) {
  Eigen::Matrix3d axes;
  axes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  const Eigen::Quaterniond q(pose.linear() * axes);
  const Eigen::Vector3d p = pose.translation();
  char text[256];
  std::snprintf(text, sizeof text, ",%.12f,%.12f,%.12f,%.12f,%.12f,%.12f,%.12f", p.x(), p.y(),
                p.z(), q.w(), q.x(), q.y(), q.z());
  return text;
}

}  // namespace trackedcam::test
