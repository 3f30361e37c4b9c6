#include "calib/calibrate_camera.h"

#include "calib/corner_detection.h"
#include "calib/intrinsic_calibration.h"

namespace trackedcam {

ResultCode Calibrate_Camera(RunLog log, double& rms, cv::Size& imageSize, cv::Mat& cameraMatrix,
                            cv::Mat& distortion, cv::Mat& Rot_Cam_Chart_vec,
                            cv::Mat& Trans_Cam_Chart_vec, std::vector<std::string>& imagePaths,
                            std::vector<TrackerRecord>& records,
                            std::vector<BoardTemplate>& objectPoints,
                            const BoardTemplate& boardTemplate, std::vector<Corners>& imagePoints,
                            int boardCols, int boardRows, int /*spareInteger*/,
                            const int& /*spareReference*/, float rmsLimit, int /*spareFlag*/,
                            int& Num_TrackerData) {
  if (const ResultCode code =
          DetectCorners(log, imageSize, imagePaths, records, objectPoints, boardTemplate,
                        imagePoints, cv::Size(boardCols, boardRows), Num_TrackerData)) {
    return code;
  }
  return CalibrateIntrinsics(log, rms, imageSize, cameraMatrix, distortion, Rot_Cam_Chart_vec,
                             Trans_Cam_Chart_vec, objectPoints, imagePoints, rmsLimit,
                             Num_TrackerData);
}

}  // namespace trackedcam
