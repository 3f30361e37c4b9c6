/// @file
/// The C interface, for hosts in any language and with any compiler.
///
/// It is a separate library, trackedcam_c, which contains everything it needs of trackedcam. It
/// calibrates a shoot, cross-checks the result, calibrates again with the mounting found, exports
/// the result to engines and writes the report page.
///
/// **Status.** Every function except trackedcam_c_version and trackedcam_last_error returns a
/// status: whether the call did its work. The outcome of a calibration is in its report. After an
/// error status no output parameter is set unless the function says otherwise, and
/// trackedcam_last_error returns a sentence. No exception leaves a function.
///
/// **Handles.** trackedcam_shoot, trackedcam_run and trackedcam_report are opaque. Free each handle
/// once, with its own function. A handle that is already freed, of another kind or invalid is
/// detected: the call returns TRACKEDCAM_INVALID_ARGUMENT. NULL may be freed.
///
/// **Text** is UTF-8 and ends with a zero byte. Functions copy the text that they take. A text that
/// a function returns belongs to the handle that it came from and is valid until that is freed.
/// Paths are absolute, or relative to the working directory of the process, which no function
/// changes.
///
/// **Units** are in the names: m metres, mm millimetres, px pixels, deg degrees, s seconds.
///
/// **Frames.** Cam is the camera's optical frame (x right, y down, z forward), Tc the tracker on
/// the camera, Tr the tracker on the chart, Chart the chessboard (origin in the first inner corner,
/// x along a row, y along a column). Transform_A_B takes coordinates given in frame B into frame A.
/// Matrices are row by row: element (r, c) of a 4x4 matrix is at 4 * r + c.
///
/// **Threads.** Every function may be called from any thread, also with one handle from several
/// threads, and several runs may go on at once. Callbacks come only on the thread that made the
/// call.
///
/// **Standard output.** Nothing is written to the standard output of the process, and it is never
/// read or redirected. The lines of a run are in its log.
///
/// **Background.** A run cannot be cancelled. To stop waiting for it, free it; it continues to its
/// end. After the first run the library stays loaded, and on Linux the process waits for running
/// calibrations before it ends.

#ifndef TRACKEDCAM_TRACKEDCAM_C_H
#define TRACKEDCAM_TRACKEDCAM_C_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(TRACKEDCAM_C_BUILDS_LIBRARY)
#define TRACKEDCAM_C_API __declspec(dllexport)
#else
#define TRACKEDCAM_C_API __declspec(dllimport)
#endif
#else
#define TRACKEDCAM_C_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// @defgroup c_status Status
/// @{

/// One of trackedcam_status_code.
typedef int32_t trackedcam_status;

/// The outcome of a call.
enum trackedcam_status_code {
  TRACKEDCAM_OK = 0,
  /// Wrong use: a null pointer, an invalid handle, a wrong size, text that is not UTF-8, or a
  /// number that is not one of those listed.
  TRACKEDCAM_INVALID_ARGUMENT = 1,
  /// The input cannot be calibrated or exported, such as a missing data file or a square of 30
  /// metres.
  TRACKEDCAM_BAD_INPUT = 2,
  TRACKEDCAM_NOT_FOUND = 3,      ///< The report has no such value.
  TRACKEDCAM_NOT_DONE = 4,       ///< The run has not ended.
  TRACKEDCAM_TOO_SMALL = 5,      ///< The caller's array is too small.
  TRACKEDCAM_OUT_OF_MEMORY = 6,  ///< There is not enough memory.
  TRACKEDCAM_FAILURE = 7,        ///< Any other error, such as a full disk.
  TRACKEDCAM_WRONG_RESULT = 8    ///< The result is certainly wrong, so it is not exported.
};

/// The version of the library, such as "1.1.0".
/// @return The text. It belongs to the library.
TRACKEDCAM_C_API const char* trackedcam_c_version(void);

/// Describes the error of the last call on this thread.
/// @return The text, at most 1023 bytes; empty if there was no error. It belongs to the library and
///   is valid until the next call on this thread.
TRACKEDCAM_C_API const char* trackedcam_last_error(void);

/// @}
/// @defgroup c_shoot Shoots
/// Photographs of a chart, with the poses of both trackers.
/// @{

/// A shoot: a tracker data file, or rows in memory.
typedef struct trackedcam_shoot trackedcam_shoot;

/// The pose of a tracker, in the axes and the unit that the settings name.
typedef struct trackedcam_pose {
  double position[3];         ///< x, y, z.
  double quaternion_wxyz[4];  ///< Of any length except 0; in the order that the settings name.
} trackedcam_pose;

/// Creates a shoot without rows. Add them with trackedcam_shoot_add.
/// @param[out] shoot Free it with trackedcam_shoot_free.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_create(trackedcam_shoot** shoot);

/// Creates a shoot from a tracker data file. The file is read when a run starts.
/// @param data_file Path of the file: comma-separated text with one row for each photograph: time,
///   photograph, position x, y, z and quaternion w, x, y, z of the tracker on the camera, then of
///   the tracker on the chart.
/// @param[out] shoot Free it with trackedcam_shoot_free.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_open(const char* data_file,
                                                         trackedcam_shoot** shoot);

/// Adds a data file to a shoot from trackedcam_shoot_open, which was continued in it. A run with a
/// file of another shoot does not start: another header, other fields or unit, photographs of
/// another size, or photographs that an earlier file has.
/// @param shoot The shoot.
/// @param data_file Path of the file, as for trackedcam_shoot_open.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_continue(trackedcam_shoot* shoot,
                                                             const char* data_file);

/// Adds a row to a shoot from trackedcam_shoot_create. When a run starts, the rows are written to
/// shoot_001/tracker_data.csv (shoot_002 and so on) below the log folder.
/// @param shoot The shoot.
/// @param time_s Time of the photograph in seconds, from any origin. Only for the data file.
/// @param photograph Path of the photograph, without commas.
/// @param camera Pose of the tracker on the camera.
/// @param chart Pose of the tracker on the chart.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_BAD_INPUT for an infinite or NaN value, for
///   a quaternion of length 0 and for a photograph with a comma.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_add(trackedcam_shoot* shoot, double time_s,
                                                        const char* photograph,
                                                        const trackedcam_pose* camera,
                                                        const trackedcam_pose* chart);

/// Writes the rows of a shoot from trackedcam_shoot_create to a tracker data file, in the axes, the
/// unit and the order in which they were added. An existing file is replaced.
/// @param shoot The shoot.
/// @param data_file Path of the file.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_save(trackedcam_shoot* shoot,
                                                         const char* data_file);

/// Frees a shoot. Runs that were started with it continue.
/// @param shoot The shoot, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_free(trackedcam_shoot* shoot);

/// @}
/// @defgroup c_settings Settings
/// @{

/// Coordinate system of the poses of a shoot.
enum trackedcam_tracker_axes {
  TRACKEDCAM_AXES_REPORTED = 0,  ///< That of the tracking system, right-handed.
  TRACKEDCAM_AXES_UNREAL = 1,  ///< Of a component of Unreal: its X, Y, Z are the reported z, -x, y.
  TRACKEDCAM_AXES_UNITY = 2    ///< Of a transform of Unity: its x, y, z are the reported -x, y, z.
};

/// Unit of the positions of a shoot.
enum trackedcam_tracker_unit {
  TRACKEDCAM_UNIT_OF_AXES = 0,      ///< Centimetres for Unreal, otherwise metres.
  TRACKEDCAM_UNIT_METRES = 1,       ///< For all axes.
  TRACKEDCAM_UNIT_CENTIMETRES = 2,  ///< For all axes.
  TRACKEDCAM_UNIT_MILLIMETRES = 3,  ///< For all axes.
  TRACKEDCAM_UNIT_INCHES = 4        ///< For all axes.
};

/// Order of the four fields of a quaternion, in a data file or in the rows that are added.
enum trackedcam_quaternion_order {
  TRACKEDCAM_QUATERNION_WXYZ = 0,  ///< w, x, y, z.
  TRACKEDCAM_QUATERNION_XYZW = 1   ///< x, y, z, w.
};

/// Axes of the chart's tracker in which its mounting is stated.
enum trackedcam_mounting_axes {
  TRACKEDCAM_MOUNTING_FIXED = 0,    ///< The library's: the reported x, y, z count as -x, -z, -y.
  TRACKEDCAM_MOUNTING_REPORTED = 1  ///< Those that the tracking system reports.
};

/// How to calibrate. Fill it with trackedcam_settings_init, then set the members marked "Required".
/// Later versions add members at the end.
typedef struct trackedcam_settings {
  uint32_t struct_size;      ///< Bytes. trackedcam_settings_init sets it.
  int32_t board_columns;     ///< Required: inner corners along a row, one less than squares.
  int32_t board_rows;        ///< Required: inner corners along a column.
  int32_t expected_records;  ///< Number of rows that were recorded; -1: do not check.
  double sensor_width_mm;    ///< Required: width of the camera's sensor.
  double sensor_height_mm;   ///< Required: height of the camera's sensor.
  double square_m;           ///< Required: edge of one square of the chart.
  /// Mounting of the chart's tracker, if mounting_is_stated is 1: three angles ax, ay, az. The
  /// rotation of Transform_Tr_Chart is Rx(ax) * Ry(ay) * Rz(az).
  double chart_rotation_deg[3];
  double chart_translation_m[3];  ///< And its translation: the first inner corner in Tr.
  int32_t mounting_is_stated;     ///< 0: find the mounting from the shoot. 1: use the stated one.
  int32_t mounting_axes;          ///< One of trackedcam_mounting_axes.
  int32_t tracker_axes;           ///< One of trackedcam_tracker_axes.
  int32_t tracker_unit;           ///< One of trackedcam_tracker_unit.
  int32_t invert_tracker_quaternions;  ///< 1: the quaternions of the trackers are inverted.
  /// 1: if the cross-check finds another mounting or bad photographs, calibrate again with the
  /// mounting found and without those photographs.
  int32_t refine_mounting;
  int32_t quaternion_order;  ///< One of trackedcam_quaternion_order.
  int32_t at_count;          ///< Number of distances in at_m; at most 100.
  /// Folder of relative paths of photographs. NULL: the folder of the data file; for rows in
  /// memory, the working directory of the process.
  const char* working_folder;
  /// Required: folder for logs and reprojected images. It is created if it does not exist. Each run
  /// creates a subfolder run_001, run_002 and so on.
  const char* log_folder;
  double good_enough_mm;   ///< How far off the result may be without a doubt; default: 2.
  double good_enough_deg;  ///< The same for its rotation; default: 0.2.
  /// How accurately the edge of the squares is known against the trackers' lengths; default: 0.1.
  double scale_uncertainty_percent;
  /// Photographs to leave out, separated by commas: paths as in the data file or the ends of them,
  /// with or without the file's ending, such as "img_003,img_007". NULL: none.
  const char* exclude;
  /// Distances at which the error in the image is stated, metres. If at_count is 0: the chart's, 2,
  /// 4 and 10.
  const double* at_m;
} trackedcam_settings;

/// Sets all members to their defaults. Required members become 0 or NULL, with which no run starts.
/// The mounting is not stated; poses are in reported axes, in metres.
/// @param[out] settings The settings.
/// @param struct_size sizeof(trackedcam_settings).
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_settings_init(trackedcam_settings* settings,
                                                            size_t struct_size);

/// @}
/// @defgroup c_run Runs
/// @{

/// A calibration that is running or has ended.
typedef struct trackedcam_run trackedcam_run;
/// The report of a calibration that has ended.
typedef struct trackedcam_report trackedcam_report;

/// Progress of a run. With refine_mounting, a second pass starts over.
typedef struct trackedcam_progress {
  char stage[64];              ///< In English, such as "Finding the board"; empty at the start.
  int32_t photographs_done;    ///< In this stage: the index of the photograph that it is at.
  int32_t photographs_in_all;  ///< 0 in a stage that does not go through the photographs.
} trackedcam_progress;

/// Receives the progress in trackedcam_calibrate, on the calling thread. It must return normally:
/// throwing or longjmp is undefined behaviour.
/// @param progress Where the run is. Steps in quick succession are reported as one.
/// @param user The pointer that was passed to trackedcam_calibrate.
typedef void (*trackedcam_progress_callback)(const trackedcam_progress* progress, void* user);

/// Calibrates a shoot and waits for the end.
/// @param shoot The shoot.
/// @param settings How to calibrate.
/// @param progress Receives the progress, or NULL.
/// @param user Passed to progress.
/// @param[out] report Free it with trackedcam_report_free. A calibration without a result has a
///   report too: see trackedcam_report_level.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_calibrate(trackedcam_shoot* shoot,
                                                        const trackedcam_settings* settings,
                                                        trackedcam_progress_callback progress,
                                                        void* user, trackedcam_report** report);

/// Starts to calibrate a shoot on a separate thread and returns at once. Rows that are added to the
/// shoot later do not take part.
/// @param shoot The shoot.
/// @param settings How to calibrate.
/// @param[out] run Free it with trackedcam_run_free.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_start(trackedcam_shoot* shoot,
                                                    const trackedcam_settings* settings,
                                                    trackedcam_run** run);

/// Reports the progress of a run without waiting.
/// @param run The run.
/// @param[out] is_done 1 if it has ended, otherwise 0.
/// @param[out] progress Where the run is, or NULL.
/// @param progress_size sizeof(trackedcam_progress); ignored if progress is NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_poll(trackedcam_run* run, int32_t* is_done,
                                                       trackedcam_progress* progress,
                                                       size_t progress_size);

/// Waits for the end of a run, or for a time.
/// @param run The run.
/// @param timeout_ms Longest time to wait, in milliseconds; negative: no limit.
/// @param[out] is_done 1 if the run has ended, 0 if the time is over.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_wait(trackedcam_run* run, int32_t timeout_ms,
                                                       int32_t* is_done);

/// Returns the report of a run that has ended.
/// @param run The run.
/// @param[out] report A new handle. Free it with trackedcam_report_free; it outlives the run.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_DONE before the end; if the run could
///   not start or was interrupted, the status that trackedcam_calibrate would return.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_report(trackedcam_run* run,
                                                         trackedcam_report** report);

/// Frees a run. One that has not ended continues in the background.
/// @param run The run, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_free(trackedcam_run* run);

/// Cross-checks a calibration from the log that the library wrote, in any host.
/// @param log_file Path of the log.
/// @param settings For the mounting that the host passed to the library, for what is good enough,
///   for the photographs to leave out and for the distances of at_m; the other members are ignored.
///   NULL for the defaults, if the mounting is not known.
/// @param[out] report Free it with trackedcam_report_free. It cannot be exported.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_crosscheck(const char* log_file,
                                                         const trackedcam_settings* settings,
                                                         trackedcam_report** report);

/// @}
/// @defgroup c_report Reports
/// @{

/// The verdict on a calibration, from the library and the cross-check.
enum trackedcam_level {
  TRACKEDCAM_GOOD = 0,   ///< The result is good.
  TRACKEDCAM_DOUBT = 1,  ///< The result is usable, with doubt.
  TRACKEDCAM_WRONG = 2,  ///< The cross-check is certain that the result is wrong.
  TRACKEDCAM_FAILED = 3  ///< There is no usable result.
};

/// The lens. The centre of the first pixel is (0, 0). A point (X, Y, Z) in Cam is imaged at
/// u = fx * (1 + k1 * r^2 + k2 * r^4) * X / Z + cx, v likewise, with r^2 = (X^2 + Y^2) / Z^2.
typedef struct trackedcam_lens {
  double image_width_px;      ///< Of the photographs.
  double image_height_px;     ///< Of the photographs.
  double fx_px;               ///< Focal length along a row.
  double fy_px;               ///< Focal length along a column.
  double cx_px;               ///< Principal point.
  double cy_px;               ///< Principal point.
  double k1;                  ///< Radial distortion of second order.
  double k2;                  ///< Radial distortion of fourth order.
  double p1;                  ///< Always 0, as are p2 and k3.
  double p2;                  ///< See p1.
  double k3;                  ///< See p1.
  double horizontal_fov_deg;  ///< Field of view.
  double vertical_fov_deg;    ///< Field of view.
  double focal_length_mm;     ///< From the smaller pixel pitch.
} trackedcam_lens;

/// Returns the level of the verdict.
/// @param report The report.
/// @param[out] level One of trackedcam_level.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_level(trackedcam_report* report,
                                                           int32_t* level);

/// Returns the result code of the library's function Calibration: 0 success, 99 usable, all others
/// a failure.
/// @param report The report.
/// @param[out] code The code.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if an exception ended the
///   library's call.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_code(trackedcam_report* report, int32_t* code);

/// Returns the verdict as text, in English.
/// @param report The report.
/// @param[out] message The verdict, one sentence.
/// @param[out] advice The next step; empty if there is none.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_verdict(trackedcam_report* report,
                                                             const char** message,
                                                             const char** advice);

/// Returns the lens that the library found.
/// @param report The report.
/// @param[out] lens The lens.
/// @param lens_size sizeof(trackedcam_lens).
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if the library found none.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_lens(trackedcam_report* report,
                                                          trackedcam_lens* lens, size_t lens_size);

/// Returns Transform_Cam_Tc as the library found it.
/// @param report The report.
/// @param[out] transform_cam_tc Sixteen numbers row by row, translation in metres.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if the library found none. A
///   report of level TRACKEDCAM_FAILED may have one; do not use it.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_transform_cam_tc(trackedcam_report* report,
                                                                      double transform_cam_tc[16]);

/// Returns the whole report as JSON text, as in the program's result file.
/// @param report The report.
/// @param[out] json The text, without exports that are made later.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_json(trackedcam_report* report,
                                                          const char** json);

/// Returns all numbers at a place of that JSON text, in its order: a number, a list or a list of
/// lists. A null becomes NaN. Each number equals that of the library to the last bit.
/// @param report The report.
/// @param pointer A JSON pointer (RFC 6901): "/normFocal", "/crossCheck/covarianceCamTcTwist".
/// @param[out] values The numbers; may be NULL if capacity is 0.
/// @param capacity Size of values, in numbers.
/// @param[out] count How many numbers there are. Also set with TRACKEDCAM_TOO_SMALL.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if there is no such place, or if
///   it contains anything but numbers.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_numbers(trackedcam_report* report,
                                                             const char* pointer, double* values,
                                                             size_t capacity, size_t* count);

/// Returns the text at a place of that JSON text, such as "/findings/0/text".
/// @param report The report.
/// @param pointer A JSON pointer.
/// @param[out] text The text.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if there is no such place, or no
///   text.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_text(trackedcam_report* report,
                                                          const char* pointer, const char** text);

/// Returns the number of elements of a list of that JSON text, such as "/findings".
/// @param report The report.
/// @param pointer A JSON pointer.
/// @param[out] count Number of elements of the list, or of members of the object.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if there is no such place, or
///   neither list nor object.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_count(trackedcam_report* report,
                                                           const char* pointer, size_t* count);

/// How to export. Fill it with trackedcam_export_options_init. Later versions add members at the
/// end.
typedef struct trackedcam_export_options {
  uint32_t struct_size;   ///< Bytes. trackedcam_export_options_init sets it.
  int32_t even_if_wrong;  ///< 1: export a result of level TRACKEDCAM_WRONG too.
  /// 1: the Lens File of unreal has the pose as nodal offset, for a camera that the tracker moves
  /// itself. A camera below a component with the exported pose must not have it.
  int32_t nodal_offset;
  int32_t reserved;  ///< 0.
  /// Of stmap: the undistorted picture in sizes of the photograph, from 1 to 4; 0: as large as it
  /// must be to show all of the photograph.
  double overscan;
  /// Of unreal, unity and opentrackio: X, Y and Z of the camera's parent in the reported axes of
  /// the tracker, such as "z,-x,y"; or "z-forward", "minus-z-forward". NULL: the format's default.
  const char* parent_axes;
  /// Of stmap, for trackedcam_report_export_file: path of a PNG file with one photograph
  /// undistorted; or NULL.
  const char* preview_file;
} trackedcam_export_options;

/// Sets all members to their defaults.
/// @param[out] options The options.
/// @param struct_size sizeof(trackedcam_export_options).
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status
trackedcam_export_options_init(trackedcam_export_options* options, size_t struct_size);

/// Exports the result to an engine: the pose of the camera relative to its tracker, in the engine's
/// axes; or to a file of another program. The export is added to the report, as "/exports/ue4" and
/// so on.
/// @param report Of a calibration that did not fail.
/// @param format unreal, unity, ue4, ue5, ue5-xn or aximmetry; opencv, ros, colmap, opentrackio or
///   stmap.
/// @param parent_axes As in trackedcam_export_options. The other options have their defaults.
/// @param[out] json Of an engine, the values, with the units in their names. Of a file, its "text";
///   of stmap, "undistortedSize" and "overscan". A code: 0, or that of the library, such as 3 for a
///   gimbal lock. A "message", which says so if the result is in doubt. May be NULL.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_NOT_FOUND if the calibration failed,
///   TRACKEDCAM_WRONG_RESULT if its result is certainly wrong.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_export(trackedcam_report* report,
                                                            const char* format,
                                                            const char* parent_axes,
                                                            const char** json);

/// As trackedcam_report_export, with all options.
/// @param report Of a calibration that did not fail.
/// @param format As for trackedcam_report_export.
/// @param options The options.
/// @param[out] json As for trackedcam_report_export.
/// @return As trackedcam_report_export.
TRACKEDCAM_C_API trackedcam_status
trackedcam_report_export_with(trackedcam_report* report, const char* format,
                              const trackedcam_export_options* options, const char** json);

/// Writes the file of an export. An existing file is replaced.
/// @param report Of a calibration that did not fail.
/// @param format opencv, ros, colmap, opentrackio or stmap; unreal for a Lens File, .ulens.
/// @param options The options, or NULL for their defaults.
/// @param file Path of the file. stmap writes two: for lens.exr, lens_undistort.exr and
///   lens_distort.exr.
/// @return As trackedcam_report_export.
TRACKEDCAM_C_API trackedcam_status
trackedcam_report_export_file(trackedcam_report* report, const char* format,
                              const trackedcam_export_options* options, const char* file);

/// Returns the content of a .ulens file, which the Unreal editor imports as a Lens File: the lens,
/// without the pose.
/// @param report Of a calibration that did not fail.
/// @param parent_axes As in trackedcam_export_options.
/// @param name Name of the lens.
/// @param[out] text The content.
/// @return As trackedcam_report_export.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_lens_file(trackedcam_report* report,
                                                               const char* parent_axes,
                                                               const char* name, const char** text);

/// Returns the report page: HTML that a browser shows without any other file.
/// @param report The report.
/// @param page_folder Folder of the page: links to the log and to images are relative to it. NULL:
///   the folder of the run.
/// @param[out] html The page.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_page(trackedcam_report* report,
                                                          const char* page_folder,
                                                          const char** html);

/// Writes the result file and the report page. If a file cannot be written completely, an existing
/// file of that name stays unchanged.
/// @param report The report.
/// @param json_file Path of the result file, or NULL.
/// @param page_file Path of the page, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_save(trackedcam_report* report,
                                                          const char* json_file,
                                                          const char* page_file);

/// Frees a report and all text that came from it.
/// @param report The report, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_free(trackedcam_report* report);

/// @}
/// @defgroup c_verify Verification
/// Whether a calibration still holds, from a few new photographs.
/// @{

/// What a verification found.
typedef struct trackedcam_verification trackedcam_verification;

/// The answer of a verification.
enum trackedcam_answer {
  TRACKEDCAM_HOLDS = 0,                 ///< The calibration still holds.
  TRACKEDCAM_CAMERA_TRACKER_MOVED = 1,  ///< On its mount.
  TRACKEDCAM_CHART_TRACKER_MOVED = 2,   ///< On its mount. Lens and Transform_Cam_Tc still hold.
  TRACKEDCAM_BOTH_TRACKERS_MOVED = 3,   ///< On their mounts.
  TRACKEDCAM_LENS_CHANGED = 4,          ///< Focal length, principal point or distortion.
  TRACKEDCAM_LENS_AND_TRACKER = 5,      ///< The lens changed, and a tracker moved.
  TRACKEDCAM_UNCLEAR = 6,               ///< Something changed; the photographs cannot say what.
  TRACKEDCAM_UNRELATED = 7,             ///< Other trackers, another chart or another reading.
  TRACKEDCAM_TOO_FEW = 8                ///< Fewer than three photographs can be used.
};

/// How to verify. Fill it with trackedcam_verify_options_init. Later versions add members at the
/// end.
typedef struct trackedcam_verify_options {
  uint32_t struct_size;        ///< Bytes. trackedcam_verify_options_init sets it.
  int32_t chart_remounted;     ///< 1: the chart was mounted anew, or is another one.
  int32_t board_columns;       ///< Of another chart: inner corners along a row; 0: the result's.
  int32_t board_rows;          ///< Of another chart: inner corners along a column; 0: the result's.
  double square_m;             ///< Of another chart: edge of one square; 0: the result's.
  const char* working_folder;  ///< Of relative photographs; NULL: the folder of the data file.
  const double* at_m;          ///< As in trackedcam_settings.
  int32_t at_count;            ///< Number of distances in at_m; at most 100.
  int32_t reserved;            ///< 0.
} trackedcam_verify_options;

/// Sets all members to their defaults.
/// @param[out] options The options.
/// @param struct_size sizeof(trackedcam_verify_options).
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status
trackedcam_verify_options_init(trackedcam_verify_options* options, size_t struct_size);

/// Tests new photographs against a calibration. It takes about as long as finding the boards.
/// @param result_file Path of the result file of the calibration.
/// @param data_file Path of the tracker data file of the new photographs, in the axes, the unit and
///   the order of the calibration's.
/// @param options The options, or NULL for their defaults.
/// @param[out] verification Free it with trackedcam_verification_free.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_BAD_INPUT for a result file that is of an
///   older form, cut, edited or wrong, and for photographs, a board or squares of another size.
TRACKEDCAM_C_API trackedcam_status trackedcam_verify(const char* result_file, const char* data_file,
                                                     const trackedcam_verify_options* options,
                                                     trackedcam_verification** verification);

/// Returns the answer.
/// @param verification The verification.
/// @param[out] answer One of trackedcam_answer.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status
trackedcam_verification_answer(trackedcam_verification* verification, int32_t* answer);

/// Returns all values as JSON text, as trackedcam verify --json prints them.
/// @param verification The verification.
/// @param[out] json The text. It is valid until the verification is freed.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status
trackedcam_verification_json(trackedcam_verification* verification, const char** json);

/// Frees a verification and its text.
/// @param verification The verification, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status
trackedcam_verification_free(trackedcam_verification* verification);

/// @}
/// @defgroup c_pair Pairing
/// A shoot from a film and a continuous recording of both trackers.
/// @{

/// What a pairing found.
typedef struct trackedcam_pairing trackedcam_pairing;

/// What to pair. Fill it with trackedcam_pair_options_init. Later versions add members at the end.
typedef struct trackedcam_pair_options {
  uint32_t struct_size;      ///< Bytes. trackedcam_pair_options_init sets it.
  int32_t board_columns;     ///< Inner corners along a row.
  int32_t board_rows;        ///< Inner corners along a column.
  int32_t photographs;       ///< How many frames are chosen, at most; default 40.
  double square_m;           ///< Edge of one square.
  const char* camera_poses;  ///< File with the poses of the tracker on the camera.
  const char* chart_poses;   ///< The same on the chart; NULL: the chart did not move.
  const char* frames;        ///< Folder with the frames as pictures.
  const char* times;         ///< File with their times; NULL: frames_per_second says them.
  double frames_per_second;  ///< Without times.
  const char* pose_format;   ///< "tum", "euroc", "opentrackio", "csv"; NULL: recognised.
  const char* columns;       ///< Of a CSV file: "time=t,x=px,..."; NULL: recognised.
  const char* pose_unit;     ///< "m", "cm", "mm" or "in"; NULL: the header's, otherwise m.
  const char* time_unit;     ///< "s", "ms", "us" or "ns"; NULL: the header's or the format's.
  double sensor_width_mm;    ///< For shoot.toml; 0: 36.
  double sensor_height_mm;   ///< For shoot.toml; 0: by the shape of the frames.
  const char* out_folder;    ///< Folder for the shoot: empty or missing.
} trackedcam_pair_options;

/// Sets all members to their defaults.
/// @param[out] options The options.
/// @param struct_size sizeof(trackedcam_pair_options).
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_pair_options_init(trackedcam_pair_options* options,
                                                                size_t struct_size);

/// Finds the delay between film and recording, chooses frames, and writes a shoot: photos/,
/// tracker_data.csv, shoot.toml and pairing.json.
/// @param options What to pair.
/// @param[out] pairing Free it with trackedcam_pairing_free.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_BAD_INPUT for files that cannot be read, a
///   folder that is not empty, and a recording that cannot be paired.
TRACKEDCAM_C_API trackedcam_status trackedcam_pair(const trackedcam_pair_options* options,
                                                   trackedcam_pairing** pairing);

/// Returns the content of pairing.json: the delay with its interval, and what became of each frame.
/// @param pairing The pairing.
/// @param[out] json The text. It is valid until the pairing is freed.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_pairing_json(trackedcam_pairing* pairing,
                                                           const char** json);

/// Frees a pairing and its text.
/// @param pairing The pairing, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_pairing_free(trackedcam_pairing* pairing);

/// @}
/// @defgroup c_compare Comparison
/// What two results of one camera differ by, and whether by chance.
/// @{

/// What two results differ by.
typedef struct trackedcam_comparison trackedcam_comparison;

/// Compares two results, the second minus the first.
/// @param first_file Path of a result file.
/// @param second_file Path of another one.
/// @param[out] comparison Free it with trackedcam_comparison_free.
/// @return TRACKEDCAM_OK or an error status: TRACKEDCAM_BAD_INPUT for a file without a result, and
///   for results with photographs or a chart of another size.
TRACKEDCAM_C_API trackedcam_status trackedcam_compare(const char* first_file,
                                                      const char* second_file,
                                                      trackedcam_comparison** comparison);

/// Returns all values as JSON text, as trackedcam compare --json prints them.
/// @param comparison The comparison.
/// @param[out] json The text. It is valid until the comparison is freed.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_comparison_json(trackedcam_comparison* comparison,
                                                              const char** json);

/// Frees a comparison and its text.
/// @param comparison The comparison, or NULL.
/// @return TRACKEDCAM_OK or an error status.
TRACKEDCAM_C_API trackedcam_status trackedcam_comparison_free(trackedcam_comparison* comparison);

/// @}

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // TRACKEDCAM_TRACKEDCAM_C_H
