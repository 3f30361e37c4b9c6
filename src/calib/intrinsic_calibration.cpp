#include "calib/intrinsic_calibration.h"

#include <algorithm>
#include <cfloat>
#include <mutex>

#include <opencv2/calib3d.hpp>

#include "core/number_text.h"

namespace trackedcam {
namespace {

// Serialises the solves of concurrent calls. Some linear algebra libraries, such as Debian's
// libopenblas0-serial, have no locks: two solves at once would share a buffer and be wrong.
std::mutex solveTurn;

}  // namespace

ResultCode CheckLensError(const RunLog& log, double rms, float rmsLimit) {
  if (rms > rmsLimit) {
    WriteRunLogLine(log, " Camera calibration failed, reporjection too large. (> " +
                             ToSixDecimals(rmsLimit) + " pixel)");
    return LogError(log, result::kLensErrorTooLarge);
  }
  return result::kSuccess;
}

void CutPoses(cv::Mat& Rot_Cam_Chart_vec, cv::Mat& Trans_Cam_Chart_vec, int& Num_TrackerData) {
  Num_TrackerData = std::min(Num_TrackerData, Rot_Cam_Chart_vec.rows);
  const cv::Range rows(0, Num_TrackerData);
  const cv::Range column(0, 1);
  Rot_Cam_Chart_vec = Rot_Cam_Chart_vec(rows, column);
  Trans_Cam_Chart_vec = Trans_Cam_Chart_vec(rows, column);
}

ResultCode CalibrateIntrinsics(RunLog log, double& rms, cv::Size imageSize, cv::Mat& cameraMatrix,
                               cv::Mat& distortion, cv::Mat& Rot_Cam_Chart_vec,
                               cv::Mat& Trans_Cam_Chart_vec,
                               const std::vector<BoardTemplate>& objectPoints,
                               const std::vector<Corners>& imagePoints, float rmsLimit,
                               int& Num_TrackerData) {
  WriteRunLogLine(log, "Camera calibration start.");
  const int flags = cv::CALIB_ZERO_TANGENT_DIST + cv::CALIB_FIX_K3;
  const cv::TermCriteria criteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, DBL_EPSILON);
  cv::Mat intrinsicDeviations;
  cv::Mat extrinsicDeviations;
  cv::Mat perViewErrors;
  {
    const std::lock_guard<std::mutex> turn(solveTurn);
    rms = cv::calibrateCamera(objectPoints, imagePoints, imageSize, cameraMatrix, distortion,
                              Rot_Cam_Chart_vec, Trans_Cam_Chart_vec, intrinsicDeviations,
                              extrinsicDeviations, perViewErrors, flags, criteria);
  }

  const auto logPixels = [&](const std::string& label, double value) {
    WriteRunLogLine(log, label + " : " + ToSixDecimals(value) + " pixel.");
  };
  logPixels("Fx", cameraMatrix.at<double>(0, 0));
  logPixels("Fy", cameraMatrix.at<double>(1, 1));
  logPixels("Cx", cameraMatrix.at<double>(0, 2));
  logPixels("Cy", cameraMatrix.at<double>(1, 2));
  WriteRunLogLine(log, "reprojection error : " + ToSixDecimals(rms));
  if (const ResultCode code = CheckLensError(log, rms, rmsLimit)) {
    return code;
  }

  CutPoses(Rot_Cam_Chart_vec, Trans_Cam_Chart_vec, Num_TrackerData);
  WriteRunLogLine(log, "size of Rot_Cam_Chart_vec : " + std::to_string(Rot_Cam_Chart_vec.rows));
  WriteRunLogLine(log, "size of Trans_Cam_Chart_vec : " + std::to_string(Trans_Cam_Chart_vec.rows));
  WriteRunLogLine(log, "Camera calibration successful.");
  return result::kSuccess;
}

}  // namespace trackedcam
