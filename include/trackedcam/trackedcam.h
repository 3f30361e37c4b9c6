/// @mainpage
///
/// trackedcam calibrates a tracked camera from photographs of a tracked chessboard chart. Its five
/// functions are declared in trackedcam.h.
///
/// Frames: Cam (the camera's optical frame: x right, y down, z forward), Tc (the tracker on the
/// camera), Base (the tracking system), Tr (the tracker on the chart), Chart (the chessboard:
/// origin in the first inner corner, x along a row, y along a column). Transform_A_B takes
/// coordinates given in frame B into frame A: p_A = Transform_A_B * p_B.
///
/// Text is UTF-8. Lengths are metres, angles degrees, sensor sizes and focal lengths millimetres.

/// @file
/// The functions that the library exports.

#ifndef TRACKEDCAM_TRACKEDCAM_H
#define TRACKEDCAM_TRACKEDCAM_H

#include <string>
#include <vector>

#if defined(TRACKEDCAM_STATIC)
#define TRACKEDCAM_API  // neither imported nor exported: linked as it comes
#elif defined(_WIN32)
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
///   photograph: time, path of the photograph (absolute, or relative to the working directory of
///   the process), then for the tracker on the camera and after it for the one on the chart:
///   position x, y, z in the base frame (metres) and orientation quaternion w, x, y, z. Lines that
///   begin with "T", such as the header "Time,...", are skipped.
/// @param sensorWidth Width of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param sensorHeight Height of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param boardCols Inner corners of the chessboard along a row (one less than its squares).
/// @param boardRows Inner corners of the chessboard along a column.
/// @param squareSize Edge of one square, metres.
/// @param chartTrackerRotation Nominal mounting of the chart's tracker, three angles in degrees
///   [ax, ay, az]: the rotation of Transform_Tr_Chart is Rx(ax) * Ry(ay) * Rz(az). Tr counts in the
///   tracker's axes after the axis fix: its reported x, y, z count as -x, -z, -y.
/// @param chartTrackerTranslation Nominal mounting, three lengths in metres: the translation of
///   Transform_Tr_Chart, that is, the chart's origin in the same axes of its tracker.
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
/// @param Num_TrackerData Number of rows that the host recorded, 1 at least. Below the number of
///   usable photographs it changes two lines of the log, and nothing of the result: every usable
///   photograph is used. 0 leaves no poses, also where photographs that drop out bring it down to
///   0, and the call returns 7. A negative number is an error of the image library.
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
/// by side; they take turns to solve the lens. They share standard output, to which every line of
/// the log is echoed, and a log file when they name one folder and begin in the same second.
///
/// Floating point: while the call runs, its thread rounds to nearest, traps nothing and keeps
/// subnormal numbers; afterwards it has the host's settings and flags again.
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
                               std::vector<double>& fieldOfView, std::vector<double>& focalLengthMm,
                               std::string logFolder, bool Flag_ModifyQuat,
                               int Num_TrackerData) noexcept(false);

/// @defgroup engines Exports to engines
///
/// Four functions hand Transform_Cam_Tc to an engine: they give the offset from the camera's
/// tracker to the camera in that engine's axes.
///
/// Outputs are appended to and never cleared: pass empty vectors. Where a log line shows an output
/// of CamAxisToUE5, CamAxisToUE5_ExportxN, or the lens figures of CamAxisToAximmetry, it shows the
/// first elements of the vector, which are the caller's own when it comes in filled.
///
/// All return -1 for wrong use by the host: an input vector holds fewer elements than are read (the
/// log says which). Nothing is then filled. Threads, floating point and exceptions are as for
/// Calibration. Rx, Ry and Rz are right-handed elementary rotations.
///
/// @{

/// For Unreal Engine 4: left-handed, x forward, y right, z up, seen from the camera.
///
/// @param transformCamTc Transform_Cam_Tc as Calibration hands it out: sixteen values row by row,
///   translation in metres at 3, 7 and 11. What is behind the sixteenth is ignored.
/// @param[out] rotationDeg Three values, degrees: roll, pitch, yaw. The rotation block of the
///   offset is Rz(yaw) * Ry(-pitch) * Rx(-roll).
/// @param[out] translationCm Three values: x, y, z, centimetres.
/// @param logFolder An existing folder for the log of the call, as for Calibration.
///
/// Angles and translation are computed in single precision.
///
/// @return
///   -  0 success.
///   -  3 gimbal lock: the pitch is within about 0.08 degree of 90 or -90, where roll and yaw
///     cannot be told apart. Nothing is filled.
///   - -1 transformCamTc has fewer than 16 elements. Nothing is filled.
TRACKEDCAM_API int CamAxisToUE4(std::vector<double> transformCamTc,
                                std::vector<double>& rotationDeg,
                                std::vector<double>& translationCm,
                                std::string logFolder) noexcept(false);

/// For Unreal Engine 5. The axes of Cam stay (x right, y down, z forward) and the hand is not
/// changed; of the tracker's axes x stays x, z becomes y and y becomes -z.
///
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] quaternionXyzw Four values: the quaternion of the offset's rotation, x, y, z, w. Its
///   sign is free: where the rotation's trace is not positive, w may be negative.
/// @param[out] translationCm Three values: x, y, z, centimetres.
/// @param logFolder As for CamAxisToUE4.
///
/// All is computed in double precision. There is no gimbal lock.
///
/// @return 0, or -1 when transformCamTc has fewer than 16 elements.
TRACKEDCAM_API int CamAxisToUE5(std::vector<double> transformCamTc,
                                std::vector<double>& quaternionXyzw,
                                std::vector<double>& translationCm,
                                std::string logFolder) noexcept(false);

/// For Unreal Engine 5 with other axes, right-handed both: those of the camera are x up, y forward,
/// z left; those of the tracker are -z, -y, -x of Tc. All else is as for CamAxisToUE5.
///
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] quaternionXyzw As for CamAxisToUE5.
/// @param[out] translationCm As for CamAxisToUE5.
/// @param logFolder As for CamAxisToUE4.
///
/// @return 0, or -1 when transformCamTc has fewer than 16 elements.
TRACKEDCAM_API int CamAxisToUE5_ExportxN(std::vector<double> transformCamTc,
                                         std::vector<double>& quaternionXyzw,
                                         std::vector<double>& translationCm,
                                         std::string logFolder) noexcept(false);

/// For Aximmetry: left-handed, x right, y up, z forward, seen from the camera.
///
/// @param normFocal The first two values that Calibration hands out: fx / width, fy / height.
/// @param normCenter The same for the principal point: cx / width, cy / height.
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] fovX One value: the horizontal field of view, degrees.
/// @param[out] lensCentre Two values: cx / width - 0.5 and -(cy / height - 0.5), the shift of the
///   principal point to the right and upwards, in parts of the image.
/// @param[out] rotationDeg Three values a, degrees: the rotation block of the offset is
///   Ry(a[1]) * Rx(a[0]) * Rz(a[2]).
/// @param[out] translationCm Three values: x, y, z, centimetres.
/// @param logFolder As for CamAxisToUE4.
///
/// The lens figures are computed in double precision, angles and translation in single. In gimbal
/// lock (a[0] within about 0.09 degree of 90 or -90) a[0] is 90 or -90, a[1] is 0 and a[2] takes
/// what is left; the log says so, and the call succeeds.
///
/// @return 0, or -1 when normFocal or normCenter has fewer than 2 elements or transformCamTc fewer
///   than 16.
TRACKEDCAM_API int CamAxisToAximmetry(std::vector<double> normFocal, std::vector<double> normCenter,
                                      std::vector<double> transformCamTc, std::vector<double>& fovX,
                                      std::vector<double>& lensCentre,
                                      std::vector<double>& rotationDeg,
                                      std::vector<double>& translationCm,
                                      std::string logFolder) noexcept(false);

/// @}

}  // extern "C"

#endif  // TRACKEDCAM_TRACKEDCAM_H
