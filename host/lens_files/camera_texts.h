// The lens as the text files of three programs. Each begins with comments on where it comes from.

#pragma once

#include <string>

#include "host/engines/origin.h"
#include "host/lens_files/lens_model.h"

namespace trackedcam::host {

/// YAML for FileStorage of OpenCV, whose model and pixel centres are the library's own.
std::string OpenCvText(const LensModel& lens, const Origin& origin);

/// YAML of a camera_info of ROS, with the model plumb_bob and OpenCV's pixel centres.
std::string RosText(const LensModel& lens, const Origin& origin);

/// cameras.txt of COLMAP, in which the centre of the first pixel is (0.5, 0.5).
std::string ColmapText(const LensModel& lens, const Origin& origin);

}  // namespace trackedcam::host
