#pragma once

#include <string>
#include <vector>

#include <opencv2/core/types.hpp>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Removes a photograph from all six lists if its transform disagrees with the mean: more than 0.5
/// degree between the rotation axes, or more than 1.3 times the root-mean-square deviation along x,
/// y or z.
/// @return 0; 9 or 10 if the axes cannot be compared; 11 if the filtered lists differ in length; 13
///   if fewer than two photographs would remain. Only 0 and 11 change the lists.
ResultCode RT_Filt_Outlier(RunLog log, TransformList& Transform_Cam_Tc_all,
                           const Transform& Mean_Transform_Cam_Tc,
                           std::vector<std::vector<cv::Point2f>>& ImageCoordinate,
                           std::vector<std::string>& Image_name,
                           TransformList& Transform_Tr_Base_all,
                           TransformList& Transform_Base_Tc_all,
                           TransformList& Transform_Cam_Chart_all);

}  // namespace trackedcam
