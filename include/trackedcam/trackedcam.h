/// @mainpage
///
/// trackedcam calibrates a tracked camera from photographs of a tracked chessboard chart.
/// trackedcam.h declares its five functions.
///
/// Frames:
/// - Cam: the camera's optics; x right, y down, z forward
/// - Tc: the tracker on the camera
/// - Base: the tracking system
/// - Tr: the tracker on the chart
/// - Chart: the chessboard; origin in the first inner corner, x along a row, y along a column
///
/// Transform_A_B converts coordinates in frame B to frame A: p_A = Transform_A_B * p_B.
///
/// Text is UTF-8. Lengths are in metres, angles in degrees, sensor sizes and focal lengths in
/// millimetres.

/// @file
/// The exported functions.

#ifndef TRACKEDCAM_TRACKEDCAM_H
#define TRACKEDCAM_TRACKEDCAM_H

#include <string>
#include <vector>

#if defined(TRACKEDCAM_STATIC)
#define TRACKEDCAM_API  // linked statically
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
/// @param dataPath Path of the tracker data file. The file is comma-separated text, one row of 16
///   fields for each photograph: time, path of the photograph (absolute, or relative to the working
///   directory of the process), pose of the tracker on the camera, pose of the tracker on the
///   chart. A pose is seven fields: position x, y, z in frame Base (metres) and orientation
///   quaternion w, x, y, z. Lines that begin with "T", such as the header "Time,...", are skipped.
/// @param sensorWidth Width of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param sensorHeight Height of the camera's sensor, millimetres. Used for focalLengthMm only.
/// @param boardCols Number of inner corners along a row of the chessboard (one less than its
///   squares).
/// @param boardRows Number of inner corners along a column of the chessboard.
/// @param squareSize Edge of one square, metres.
/// @param chartTrackerRotation Nominal mounting of the chart's tracker: three angles [ax, ay, az],
///   degrees. The rotation of Transform_Tr_Chart is Rx(ax) * Ry(ay) * Rz(az). The axes of Tr are
///   the tracker's axes after the axis fix: the reported x, y, z count as -x, -z, -y.
/// @param chartTrackerTranslation Nominal mounting of the chart's tracker: three lengths, metres.
///   They are the translation of Transform_Tr_Chart: the position of the chart's origin in Tr.
/// @param[out] imageSize Two values: width and height of the photographs, pixels.
/// @param[out] normFocal Two values: fx / width, fy / height.
/// @param[out] normCenter Two values: cx / width, cy / height. The centre of the first pixel is 0.
/// @param[out] distortion Five values: k1, k2, p1, p2, k3 (p1, p2 and k3 are fixed at 0).
/// @param[out] transformCamTc Sixteen values: Transform_Cam_Tc (Mean_Transform_Cam_Tc in the log)
///   row by row, element (r, c) at index 4 * r + c, translation in metres at 3, 7 and 11.
/// @param[out] fieldOfView Two values: horizontal and vertical field of view, degrees.
/// @param[out] focalLengthMm One value: the focal length, millimetres, by the smaller pixel pitch.
/// @param logFolder Folder for the run log and the reprojected images. It must exist; the library
///   creates no folder. The log is log_YYYY-MM-DD-hh.mm.ss.txt (local time). Each photograph that
///   was used is copied to Reproject_ and its name, with the detected corners in red and the
///   corners that trackers and solution predict in blue. The name is the part of the photograph's
///   path after the last backslash. A path with forward slashes is appended whole: for photos/a.jpg
///   the folder Reproject_photos must exist. If a file cannot be written, the run continues without
///   it.
/// @param Flag_ModifyQuat True if the trackers' quaternions are the inverse rotations. The library
///   then negates their x, y and z before use.
/// @param Num_TrackerData Number of rows that the host recorded, at least 1. A number below that of
///   the usable photographs changes two lines of the log but not the result: every usable
///   photograph is used. Photographs that drop out lower the number. At 0 there are no poses, and
///   the call returns 7. A negative number raises an exception of the image library.
///
/// @return
///   -  0 success. All outputs are filled.
///   - 99 warning: usable, but a new calibration is recommended. All outputs are filled.
///   -  1 the tracker data file cannot be opened. Nothing is filled.
///   -  2 rows and photographs differ in number. Nothing is filled.
///   - 15 a row of the tracker data file has the wrong form. Nothing is filled.
///   -  4 fewer than 12 usable photographs. Nothing is filled.
///   -  5 the reprojection error of the lens exceeds 1.5 pixels. Nothing is filled.
///   -  7, 8, 9, 10, 11, 12 the lists of photographs and poses do not match. All outputs except
///     transformCamTc are filled.
///   - 13 fewer than two photographs remain after the outliers are removed. All outputs except
///     transformCamTc are filled.
///   -  6 the translations of the single photographs spread by more than 15 mm. All outputs are
///     filled.
///   - 14 the reprojection error exceeds 18 pixels at 1080 rows. All outputs are filled.
///   - -1 wrong use by the host: chartTrackerRotation or chartTrackerTranslation has fewer than
///     three values (the log says which). Nothing is filled.
///
/// The function appends to the output vectors and never clears them: pass empty vectors. It
/// computes the fields of view from the first two elements of normFocal. If that vector was not
/// empty, these are the caller's values.
///
/// Threads: the function runs on the caller's thread and keeps no state. Several calls may run at
/// the same time; only their lens solves run one after the other. All calls echo every line of
/// their log to standard output. Calls that pass the same folder and start in the same second share
/// one log file.
///
/// Floating point: during the call, the thread rounds to nearest, traps nothing and keeps subnormal
/// numbers. Afterwards the host's settings and flags are restored.
///
/// @throws std::exception Exceptions of the libraries underneath leave the call:
///   std::range_error("bad conversion") for a path that is not UTF-8, std::bad_alloc, and errors of
///   the image library for views that cannot be solved. The outputs then hold what was appended
///   before.
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
/// Four functions convert Transform_Cam_Tc to the offset from the camera's tracker to the camera,
/// in the axes of an engine.
///
/// They append to the output vectors and never clear them: pass empty vectors. CamAxisToUE5 and
/// CamAxisToUE5_ExportxN log the first elements of their output vectors, and CamAxisToAximmetry
/// those of fovX and lensCentre. If such a vector was not empty, these are the caller's values.
///
/// All functions return -1 for wrong use by the host: an input vector has fewer elements than are
/// read (the log says which). Nothing is then filled. Threads, floating point and exceptions are as
/// for Calibration. Rx, Ry and Rz are right-handed elementary rotations.
///
/// @{

/// For Unreal Engine 4: left-handed; x forward, y right, z up, seen from the camera.
///
/// @param transformCamTc Transform_Cam_Tc as Calibration returns it: sixteen values row by row,
///   translation in metres at 3, 7 and 11. Further values are ignored.
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
///     cannot be separated. Nothing is filled.
///   - -1 transformCamTc has fewer than 16 elements. Nothing is filled.
TRACKEDCAM_API int CamAxisToUE4(std::vector<double> transformCamTc,
                                std::vector<double>& rotationDeg,
                                std::vector<double>& translationCm,
                                std::string logFolder) noexcept(false);

/// For Unreal Engine 5. The axes of Cam stay as they are (x right, y down, z forward),
/// right-handed. The tracker's x stays x, its z becomes y and its y becomes -z.
///
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] quaternionXyzw Four values: the quaternion of the offset's rotation, x, y, z, w. Its
///   sign is free: if the trace of the rotation is not positive, w may be negative.
/// @param[out] translationCm Three values: x, y, z, centimetres.
/// @param logFolder As for CamAxisToUE4.
///
/// Everything is computed in double precision. There is no gimbal lock.
///
/// @return 0, or -1 if transformCamTc has fewer than 16 elements.
TRACKEDCAM_API int CamAxisToUE5(std::vector<double> transformCamTc,
                                std::vector<double>& quaternionXyzw,
                                std::vector<double>& translationCm,
                                std::string logFolder) noexcept(false);

/// For Unreal Engine 5 with other axes, both right-handed. Camera: x up, y forward, z left.
/// Tracker: x, y, z are -z, -y, -x of Tc. Everything else is as for CamAxisToUE5.
///
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] quaternionXyzw As for CamAxisToUE5.
/// @param[out] translationCm As for CamAxisToUE5.
/// @param logFolder As for CamAxisToUE4.
///
/// @return 0, or -1 if transformCamTc has fewer than 16 elements.
TRACKEDCAM_API int CamAxisToUE5_ExportxN(std::vector<double> transformCamTc,
                                         std::vector<double>& quaternionXyzw,
                                         std::vector<double>& translationCm,
                                         std::string logFolder) noexcept(false);

/// For Aximmetry: left-handed; x right, y up, z forward, seen from the camera.
///
/// @param normFocal Two values as Calibration returns them: fx / width, fy / height.
/// @param normCenter Two values as Calibration returns them: cx / width, cy / height.
/// @param transformCamTc As for CamAxisToUE4.
/// @param[out] fovX One value: the horizontal field of view, degrees.
/// @param[out] lensCentre Two values: cx / width - 0.5 and -(cy / height - 0.5), the offset of the
///   principal point to the right and upwards, as a fraction of the image size.
/// @param[out] rotationDeg Three values a, degrees: the rotation block of the offset is
///   Ry(a[1]) * Rx(a[0]) * Rz(a[2]).
/// @param[out] translationCm Three values: x, y, z, centimetres.
/// @param logFolder As for CamAxisToUE4.
///
/// Field of view and lens centre are computed in double precision, angles and translation in single
/// precision. In gimbal lock (a[0] within about 0.09 degree of 90 or -90), a[0] is 90 or -90, a[1]
/// is 0 and a[2] is the remaining rotation. The log reports it, and the call succeeds.
///
/// @return 0, or -1 if normFocal or normCenter has fewer than 2 elements or transformCamTc fewer
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
