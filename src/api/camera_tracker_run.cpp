#include "api/camera_tracker_run.h"

#include "calib/quality_verdict.h"
#include "calib/reprojection_error.h"
#include "handeye/camera_tracker_transform.h"
#include "handeye/chart_tracker_transform.h"
#include "handeye/outlier_filter.h"
#include "handeye/pose_sets.h"

namespace trackedcam {
namespace {

// Limits of the reprojection error divided by the image height: 12 and 18 pixels at 1080 rows.
constexpr float kNormErrorWarning = 0.011111111F;
constexpr float kNormErrorFailure = 0.016666668F;

// Limits of the spread of the translations, metres.
constexpr float kSpreadWarning = 0.01F;
constexpr float kSpreadFailure = 0.015F;

constexpr std::size_t kPosesReserved = 5000;

}  // namespace

ResultCode RunCameraTracker(RunLog log, CalibrationData& data,
                            const std::vector<double>& chartTrackerRotation,
                            const std::vector<double>& chartTrackerTranslation,
                            std::vector<double>& transformCamTc, const std::string& logFolder,
                            bool Flag_ModifyQuat) {
  TransformList Transform_Cam_Chart_all;
  TransformList Transform_Tr_Base_all;
  TransformList Transform_Base_Tc_all;
  TransformList Transform_Cam_Tc_all;
  for (TransformList* list : {&Transform_Cam_Chart_all, &Transform_Tr_Base_all,
                              &Transform_Base_Tc_all, &Transform_Cam_Tc_all}) {
    list->reserve(kPosesReserved);
  }
  std::vector<Eigen::Quaternionf> rotations;
  std::vector<Eigen::Vector3f> translations;

  WriteRunLogLine(log, "Start OrganizeRT.");
  Transform Transform_Chart_Tr = Transform::Identity();
  if (const ResultCode code = OrganizeRT(
          log, Transform_Base_Tc_all, Transform_Tr_Base_all, Transform_Chart_Tr,
          Transform_Cam_Chart_all, data.Rot_Cam_Chart_vec, data.Trans_Cam_Chart_vec,
          chartTrackerRotation, chartTrackerTranslation, data.records, Flag_ModifyQuat)) {
    return code;
  }
  WriteRunLogLine(log, "Finish OrganizeRT.");

  // First solve, with the nominal mounting of the chart's tracker.
  Transform Mean_Transform_Cam_Tc = Transform::Identity();
  WriteRunLogLine(log, "Start Calculate_Transform_Cam_Tc in first time.");
  if (const ResultCode code =
          Calculate_Transform_Cam_Tc(log, Mean_Transform_Cam_Tc, Transform_Cam_Tc_all, rotations,
                                     translations, Transform_Cam_Chart_all, Transform_Chart_Tr,
                                     Transform_Tr_Base_all, Transform_Base_Tc_all)) {
    return code;
  }
  WriteRunLogLine(log, "Finish Calculate_Transform_Cam_Tc.");
  float averageError = 0;
  if (const ResultCode code = Cal_Reproj_Error(
          log, averageError, data.boardTemplate, data.imagePoints, data.cameraMatrix,
          data.distortion, Mean_Transform_Cam_Tc, Transform_Base_Tc_all, Transform_Tr_Base_all,
          Transform_Chart_Tr, data.imagePaths, false, logFolder)) {
    return code;
  }
  if (const ResultCode code = RT_Filt_Outlier(
          log, Transform_Cam_Tc_all, Mean_Transform_Cam_Tc, data.imagePoints, data.imagePaths,
          Transform_Tr_Base_all, Transform_Base_Tc_all, Transform_Cam_Chart_all)) {
    return code;
  }

  // Second solve, with the mounting estimated from the remaining photographs.
  Transform Mean_Transform_Chart_Tr;
  if (const ResultCode code = Calculate_Transform_Chart_Tr(
          log, Mean_Transform_Chart_Tr, Transform_Cam_Chart_all, Mean_Transform_Cam_Tc,
          Transform_Base_Tc_all, Transform_Tr_Base_all)) {
    return code;
  }
  if (const ResultCode code =
          Calculate_Transform_Cam_Tc(log, Mean_Transform_Cam_Tc, Transform_Cam_Tc_all, rotations,
                                     translations, Transform_Cam_Chart_all, Mean_Transform_Chart_Tr,
                                     Transform_Tr_Base_all, Transform_Base_Tc_all)) {
    return code;
  }
  if (const ResultCode code = Cal_Reproj_Error(
          log, averageError, data.boardTemplate, data.imagePoints, data.cameraMatrix,
          data.distortion, Mean_Transform_Cam_Tc, Transform_Base_Tc_all, Transform_Tr_Base_all,
          Mean_Transform_Chart_Tr, data.imagePaths, true, logFolder)) {
    return code;
  }
  AppendTransform(transformCamTc, Mean_Transform_Cam_Tc);

  const float normError = averageError / static_cast<float>(data.imageSize.height);
  if (const ResultCode code =
          Quality_Verdict(log, normError, kNormErrorWarning, kNormErrorFailure,
                          Mean_Transform_Cam_Tc, translations, kSpreadWarning, kSpreadFailure)) {
    return code;
  }
  WriteRunLogLine(log, "Camera and Tracker Calibration successful.");
  return result::kSuccess;
}

}  // namespace trackedcam
