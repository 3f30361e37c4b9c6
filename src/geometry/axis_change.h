// From Transform_Cam_Tc to the tracker-to-camera offset in an engine's axes.

#pragma once

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// out is the offset from the tracker to the camera, translation in metres. All return 0; only
/// AxisChangeUE4 writes to the log.
ResultCode AxisChangeUE4(RunLog log, const Transform& Transform_Cam_Tc, Transform& out);
ResultCode AxisChangeUE5(RunLog log, const Transform& Transform_Cam_Tc, Transform& out);
ResultCode AxisChangeUE5xN(RunLog log, const Transform& Transform_Cam_Tc, Transform& out);
ResultCode AxisChangeAximmetry(RunLog log, const Transform& Transform_Cam_Tc, Transform& out);

}  // namespace trackedcam
