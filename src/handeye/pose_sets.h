#pragma once

#include <vector>

#include <opencv2/core/mat.hpp>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Converts the chart's poses in frame Cam and the tracker records to transforms, and the nominal
/// mounting of the chart's tracker to Transform_Chart_Tr. Appends one element to each list for each
/// record that has a pose.
///
/// - Rot_Cam_Chart_vec (axis times angle, radians) and Trans_Cam_Chart_vec (metres): rows of three
///   doubles; row i belongs to record i. If they are views with fewer rows than there are records,
///   the missing rows come from the underlying matrix.
/// - chartTrackerRotation (three angles, degrees) and chartTrackerTranslation (three lengths,
///   metres): the nominal Transform_Tr_Chart.
/// - Flag_ModifyQuat: whether to invert the trackers' quaternions.
///
/// @return 0 always.
ResultCode OrganizeRT(RunLog log, TransformList& Transform_Base_Tc_all,
                      TransformList& Transform_Tr_Base_all, Transform& Transform_Chart_Tr,
                      TransformList& Transform_Cam_Chart_all, const cv::Mat& Rot_Cam_Chart_vec,
                      const cv::Mat& Trans_Cam_Chart_vec,
                      const std::vector<double>& chartTrackerRotation,
                      const std::vector<double>& chartTrackerTranslation,
                      const std::vector<TrackerRecord>& records, bool Flag_ModifyQuat);

/// Converts a reported pose to the tracker axes of the solving stages.
Transform ApplyTrackerAxisFix(const Transform& trackerPose);

}  // namespace trackedcam
