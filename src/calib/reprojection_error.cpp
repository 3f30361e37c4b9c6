#include "calib/reprojection_error.h"

#include <cmath>

#include <Eigen/Core>
#include <opencv2/calib3d.hpp>
#include <opencv2/core/eigen.hpp>

#include "calib/reprojected_image.h"
#include "core/number_text.h"
#include "core/precision.h"
#include "io/load_image.h"

namespace trackedcam {
namespace {

Corners ProjectBoard(const BoardTemplate& boardTemplate, const Transform& Transform_Cam_Chart,
                     const cv::Mat& cameraMatrix, const cv::Mat& distortion) {
  cv::Mat rotationBlock;
  cv::eigen2cv(Eigen::Matrix3d(Transform_Cam_Chart.topLeftCorner<3, 3>()), rotationBlock);
  cv::Mat rotation;
  cv::Rodrigues(rotationBlock, rotation);
  cv::Mat translation;
  cv::eigen2cv(Eigen::Vector3d(Transform_Cam_Chart.topRightCorner<3, 1>()), translation);
  Corners projected;
  cv::projectPoints(boardTemplate, rotation, translation, cameraMatrix, distortion, projected);
  return projected;
}

// The mean of the distances, not their root mean square.
float MeanDistance(const Corners& detected, const Corners& projected) {
  FloatSum sum;
  for (std::size_t j = 0; j < projected.size(); ++j) {
    const cv::Point2f difference = detected[j] - projected[j];
    sum.Add(std::sqrt(std::pow(difference.x, 2.0) + std::pow(difference.y, 2.0)));
  }
  return sum.Value() / static_cast<float>(projected.size());
}

}  // namespace

ResultCode Cal_Reproj_Error(RunLog log, float& averageError, const BoardTemplate& boardTemplate,
                            const std::vector<Corners>& imagePoints, const cv::Mat& cameraMatrix,
                            const cv::Mat& distortion, const Transform& Mean_Transform_Cam_Tc,
                            const TransformList& Transform_Base_Tc_all,
                            const TransformList& Transform_Tr_Base_all,
                            const Transform& Transform_Chart_Tr,
                            const std::vector<std::string>& imagePaths, bool writeImages,
                            const std::string& outputFolder) {
  if (imagePoints.size() != Transform_Base_Tc_all.size()) {
    return LogError(log, result::kReprojectionListsDiffer);
  }
  FloatSum sum;
  for (std::size_t i = 0; i < imagePoints.size(); ++i) {
    const Transform Transform_Cam_Chart =
        Mean_Transform_Cam_Tc * InverseTransform(Transform_Base_Tc_all[i]) *
        InverseTransform(Transform_Tr_Base_all[i]) * InverseTransform(Transform_Chart_Tr);
    const Corners projected =
        ProjectBoard(boardTemplate, Transform_Cam_Chart, cameraMatrix, distortion);

    if (writeImages) {
      // The second read can fail. No result depends on it.
      cv::Mat photograph = LoadImageOrNone(imagePaths[i]);
      if (!photograph.empty()) {
        DrawCorners(photograph, imagePoints[i], projected);
        WriteReprojectedImage(photograph, outputFolder, imagePaths[i]);
      }
    } else {
      ImageOpens(imagePaths[i]);  // reports a missing photograph on the console in this pass too
    }

    const float error = MeanDistance(imagePoints[i], projected);
    sum.Add(error);
    WriteRunLogLine(log, "Image " + std::to_string(i) +
                             " reprojection error : " + ToSixDecimals(error) + " pixels.");
  }
  averageError = sum.Value() / static_cast<float>(imagePoints.size());
  WriteRunLogLine(log, "Average reprojection error : " + ToSixDecimals(averageError) + " pixels.");
  return result::kSuccess;
}

}  // namespace trackedcam
