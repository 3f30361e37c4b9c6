// trackedcam: calibrates a tracked camera from photographs of a tracked chessboard chart.
//
// Frames: Cam (the camera's optical frame: x right, y down, z forward), Tc (the tracker on the
// camera), Base (the tracking system), Tr (the tracker on the chart), Chart (the chessboard: origin
// in the first inner corner, x along a row, y along a column). Transform_A_B takes coordinates given
// in frame B into frame A: p_A = Transform_A_B * p_B.
//
// Text is UTF-8. Lengths are metres, angles degrees, sensor sizes and focal lengths millimetres.

#ifndef TRACKEDCAM_TRACKEDCAM_H
#define TRACKEDCAM_TRACKEDCAM_H

#include <string>
#include <vector>

#if defined(_WIN32)
#if defined(TRACKEDCAM_BUILDS_LIBRARY)
#define TRACKEDCAM_API __declspec(dllexport)
#else
#define TRACKEDCAM_API __declspec(dllimport)
#endif
#else
#define TRACKEDCAM_API __attribute__((visibility("default")))
#endif

extern "C" {

/// Calibrates the lens and the transform between the camera and its tracker from one shoot.
///
/// @param dataPath Path of the tracker data file: comma-separated text with one row for each
///   photograph: time, path of the photograph (absolute, or relative to the working directory of the
///   process), then for the tracker on the camera and after it for the one on the chart: position
///   x, y, z in the base frame (metres) and orientation quaternion w, x, y, z. Lines that begin with
///   "T", such as the header "Time,...", are skipped.
/// @param sensorWidth Width of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param sensorHeight Height of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param boardCols Inner corners of the chessboard along a row (one less than its squares).
/// @param boardRows Inner corners of the chessboard along a column.
/// @param squareSize Edge of one square, metres.
/// @param chartTrackerRotation Nominal mounting of the chart's tracker, three angles in degrees
///   [ax, ay, az]: the rotation of Transform_Tr_Chart is Rx(ax) * Ry(ay) * Rz(az).
/// @param chartTrackerTranslation Nominal mounting, three lengths in metres: the translation of
///   Transform_Tr_Chart, that is, the chart's origin in the frame of its tracker.
/// @param[out] imageSize Two values: width and height of the photographs, pixels.
/// @param[out] normFocal Two values: fx / width, fy / height.
/// @param[out] normCenter Two values: cx / width, cy / height. The centre of the first pixel is 0.
/// @param[out] distortion Five values: k1, k2, p1, p2, k3 (p1, p2 and k3 are held at 0).
/// @param[out] transformCamTc Sixteen values: Mean_Transform_Cam_Tc row by row, element (r, c) at
///   index 4 * r + c, translation in metres at 3, 7 and 11.
/// @param[out] fieldOfView Two values: horizontal and vertical field of view, degrees.
/// @param[out] focalLengthMm One value: the focal length, millimetres, by the smaller pixel pitch.
/// @param logFolder An existing folder. The run log goes into it as
///   log_YYYY-MM-DD-hh.mm.ss.txt (local time), and so does a copy of each photograph that was used,
///   named Reproject_ and the photograph's name, with the detected corners (red) and the corners
///   that the trackers and the solution predict (blue). The name is what follows the last
///   backslash of the photograph's path; a path with forward slashes is appended whole, so its
///   folders must exist below Reproject_. No folder is created. Where a file cannot be written the
///   run goes on without it.
/// @param Flag_ModifyQuat True when the trackers' quaternions give the inverse rotation: their x, y
///   and z are negated before use.
/// @param Num_TrackerData Number of rows that the host recorded. At the number of rows or above it
///   has no effect. Below the number of usable photographs it leaves too few poses, and the call
///   returns 7.
///
/// @return
///   -  0 success: all outputs are filled.
///   - 99 warning: usable, but a new calibration is recommended. All outputs are filled.
///   -  1 the tracker data file cannot be opened. Nothing is filled.
///   -  2 rows and photographs differ in number. Nothing is filled.
///   - 15 a row of the tracker data file has the wrong form. Nothing is filled.
///   -  4 fewer than 12 usable photographs. Nothing is filled.
///   -  5 the lens solution's reprojection error exceeds 1.5 pixels. Nothing is filled.
///   -  7, 8, 9, 10, 11, 12 the lists of photographs and poses do not match. All outputs but
///     transformCamTc are filled.
///   - 13 fewer than two photographs are left when outliers are removed. All outputs but
///     transformCamTc are filled.
///   -  6 the translations of the single photographs spread by more than 15 mm. All outputs are
///     filled.
///   - 14 the reprojection error exceeds 18 pixels at 1080 rows. All outputs are filled.
///   - -1 wrong use by the host: chartTrackerRotation or chartTrackerTranslation holds fewer than
///     three values (the log says which). Nothing is filled.
///
/// Outputs are appended to and never cleared: pass empty vectors. The fields of view are computed
/// from the first two elements of normFocal, which are the caller's own when it comes in filled.
///
/// Threads: runs on the caller's thread from start to end and keeps no state, so calls may run side
/// by side. They share standard output, to which every line of the log is echoed, and a log file
/// when they name one folder and begin in the same second.
///
/// @throws std::exception What a library underneath throws leaves the call: std::range_error("bad
///   conversion") for a path that is not UTF-8, std::bad_alloc, and the image library's errors for
///   views that cannot be solved. Outputs then hold what was appended before.
TRACKEDCAM_API int Calibration(std::string dataPath, double sensorWidth, double sensorHeight,
                               int boardCols, int boardRows, double squareSize,
                               std::vector<double> chartTrackerRotation,
                               std::vector<double> chartTrackerTranslation,
                               std::vector<double>& imageSize, std::vector<double>& normFocal,
                               std::vector<double>& normCenter, std::vector<double>& distortion,
                               std::vector<double>& transformCamTc,
                               std::vector<double>& fieldOfView,
                               std::vector<double>& focalLengthMm, std::string logFolder,
                               bool Flag_ModifyQuat, int Num_TrackerData) noexcept(false);

}  // extern "C"

#endif  // TRACKEDCAM_TRACKEDCAM_H
