#pragma once

#include <vector>

#include <opencv2/core/mat.hpp>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Turns the chart's poses in the camera frame and the tracker records into lists of transforms,
/// appended in step, and the nominal mounting of the chart's tracker into Transform_Chart_Tr.
///
/// Rot_Cam_Chart_vec (axis times angle, radians) and Trans_Cam_Chart_vec (metres) have N rows of
/// three doubles; row i belongs to record i. Where they are views that end before the records do,
/// the rows behind them are taken from the matrix that they are views of. The lists get one element
/// for each record that has a row so. chartTrackerRotation holds three angles in degrees,
/// chartTrackerTranslation three lengths in metres, both of Transform_Tr_Chart. Flag_ModifyQuat
/// inverts the trackers' quaternions. Always returns 0.
ResultCode OrganizeRT(RunLog log, TransformList& Transform_Base_Tc_all,
                      TransformList& Transform_Tr_Base_all, Transform& Transform_Chart_Tr,
                      TransformList& Transform_Cam_Chart_all, const cv::Mat& Rot_Cam_Chart_vec,
                      const cv::Mat& Trans_Cam_Chart_vec,
                      const std::vector<double>& chartTrackerRotation,
                      const std::vector<double>& chartTrackerTranslation,
                      const std::vector<TrackerRecord>& records, bool Flag_ModifyQuat);

/// Re-expresses a tracker's own axes in the axes that the solving stages use.
Transform ApplyTrackerAxisFix(const Transform& trackerPose);

}  // namespace trackedcam
