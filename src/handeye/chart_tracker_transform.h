#pragma once

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Solves the loop of Calculate_Transform_Cam_Tc for the mounting of the chart's tracker, with the
/// transform between camera and tracker known, and averages over the photographs.
/// @return 0, or 12 if the lists differ in length. Mean_Transform_Chart_Tr is then the identity.
ResultCode Calculate_Transform_Chart_Tr(RunLog log, Transform& Mean_Transform_Chart_Tr,
                                        const TransformList& Transform_Cam_Chart_all,
                                        const Transform& Mean_Transform_Cam_Tc,
                                        const TransformList& Transform_Base_Tc_all,
                                        const TransformList& Transform_Tr_Base_all);

}  // namespace trackedcam
