/// @file
/// The C interface, for hosts of any compiler and any language.
///
/// It is a library of its own, trackedcam_c, which has all that it needs of trackedcam inside. It
/// calibrates a shoot, cross-checks the result, calibrates again with the mounting found, hands the
/// result to engines and writes the report page.
///
/// **Status.** Every function but trackedcam_c_version and trackedcam_last_error returns a status:
/// whether the function did its work. What a calibration came to is another matter, and stands in
/// its report. After any status but TRACKEDCAM_OK nothing is filled unless the function says
/// otherwise, and trackedcam_last_error has a sentence. No exception leaves a function.
///
/// **Handles.** trackedcam_shoot, trackedcam_run and trackedcam_report are opaque, and each is
/// freed once, by its own function. A handle that was freed, is of another kind or was never handed
/// out is recognised and refused. NULL may be freed.
///
/// **Text** is UTF-8 and ends with a zero. What goes in is copied. What comes out belongs to the
/// handle that it came from and stays until that is freed. Paths are absolute, or relative to the
/// working directory of the process, which no function changes.
///
/// **Units** stand in the names: m metres, mm millimetres, px pixels, deg degrees, s seconds.
///
/// **Frames.** Cam is the camera's optical frame (x right, y down, z forward), Tc the tracker on
/// the camera, Tr the tracker on the chart, Chart the chessboard (origin in the first inner corner,
/// x along a row, y along a column). Transform_A_B takes coordinates given in frame B into frame A.
/// A matrix is written row by row: element (r, c) of a 4x4 one at 4 * r + c.
///
/// **Threads.** Every function may be called on every thread, also with one handle on several, and
/// several runs may go on at once. Nothing is called back on a thread that is not the caller's.
///
/// **Standard output.** While a calibration runs, and while a result is handed to ue4, ue5, ue5-xn
/// or aximmetry, each line of the library's log is written to the process's standard output as
/// well: local time, a tab, the message. Nothing else writes there. It is never read or redirected,
/// unless trackedcam_settings.silent asks for that.
///
/// **Background.** A run cannot be cancelled. Whoever does not want to wait any longer frees it;
/// the work then goes on to its end. From the first run on the library stays loaded, and on Linux
/// the end of the process waits for runs that are going on.

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

/// What became of a call.
enum trackedcam_status_code {
  TRACKEDCAM_OK = 0,
  /// Wrong use: a null pointer, a handle that is none, a wrong size, text that is not UTF-8, a
  /// number that stands for nothing.
  TRACKEDCAM_INVALID_ARGUMENT = 1,
  /// What was asked for cannot be done as it was asked, such as with a data file that is not there
  /// or a square of 30 metres.
  TRACKEDCAM_BAD_INPUT = 2,
  TRACKEDCAM_NOT_THERE = 3,      ///< The report has no such figure.
  TRACKEDCAM_NOT_DONE = 4,       ///< The run is still going on.
  TRACKEDCAM_TOO_SMALL = 5,      ///< The caller's array is too short for what there is.
  TRACKEDCAM_OUT_OF_MEMORY = 6,  ///< There was not enough memory.
  TRACKEDCAM_FAILURE = 7         ///< Anything else, such as a disk that is full.
};

/// The version of the library: "1.1.0". It belongs to the library.
/// @return The text.
TRACKEDCAM_C_API const char* trackedcam_c_version(void);

/// What went wrong in the last call on this thread; empty when nothing did. At most 1023 bytes. It
/// belongs to the library and stays until the next call on this thread.
/// @return The text.
TRACKEDCAM_C_API const char* trackedcam_last_error(void);

/// @}
/// @defgroup c_shoot Shoots
/// The photographs of a chart and where both trackers were.
/// @{

/// A shoot: a tracker data file, or rows in memory.
typedef struct trackedcam_shoot trackedcam_shoot;

/// A tracker in the tracking system, in the axes and unit that the settings name.
typedef struct trackedcam_pose {
  double position[3];         ///< x, y, z.
  double quaternion_wxyz[4];  ///< Of any length but 0.
} trackedcam_pose;

/// A shoot whose rows are added by trackedcam_shoot_add.
/// @param[out] shoot To be freed by trackedcam_shoot_free.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_create(trackedcam_shoot** shoot);

/// A shoot that a tracker data file holds. The file is read when a run starts.
/// @param data_file Path of comma-separated text with one row for each photograph: time,
///   photograph, position x, y, z and quaternion w, x, y, z of the tracker on the camera, then of
///   the one on the chart.
/// @param[out] shoot To be freed by trackedcam_shoot_free.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_open(const char* data_file,
                                                         trackedcam_shoot** shoot);

/// Adds a photograph to a shoot that trackedcam_shoot_create gave. When a run starts, the rows are
/// written to shoot_001/tracker_data.csv (or _002 and so on) below the log folder.
/// @param shoot To add to.
/// @param time_s Of the photograph, in seconds from any moment. For the data file only.
/// @param photograph Path of the photograph, without commas.
/// @param camera The tracker on the camera.
/// @param chart The tracker on the chart.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_add(trackedcam_shoot* shoot, double time_s,
                                                        const char* photograph,
                                                        const trackedcam_pose* camera,
                                                        const trackedcam_pose* chart);

/// Frees a shoot. A run that it began goes on.
/// @param shoot To be freed, or NULL.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_shoot_free(trackedcam_shoot* shoot);

/// @}
/// @defgroup c_settings Settings
/// @{

/// Whose axes the poses of a shoot count in.
enum trackedcam_tracker_axes {
  TRACKEDCAM_AXES_REPORTED = 0,  ///< The tracking system's own, right-handed.
  TRACKEDCAM_AXES_UNREAL = 1,  ///< Of a component of Unreal: its X, Y, Z are the reported z, -x, y.
  TRACKEDCAM_AXES_UNITY = 2    ///< Of a transform of Unity: its x, y, z are the reported -x, y, z.
};

/// The unit of positions in a shoot.
enum trackedcam_tracker_unit {
  TRACKEDCAM_UNIT_OF_AXES = 0,      ///< Centimetres for Unreal, metres for the others.
  TRACKEDCAM_UNIT_METRES = 1,       ///< Whatever the axes.
  TRACKEDCAM_UNIT_CENTIMETRES = 2,  ///< Whatever the axes.
  TRACKEDCAM_UNIT_MILLIMETRES = 3   ///< Whatever the axes.
};

/// In which axes of the chart's tracker its mounting counts.
enum trackedcam_mounting_axes {
  TRACKEDCAM_MOUNTING_FIXED = 0,    ///< The library's: reported x, y, z count as -x, -z, -y.
  TRACKEDCAM_MOUNTING_REPORTED = 1  ///< Those that the tracking system reports.
};

/// How to calibrate. trackedcam_settings_init fills it; the host then sets what follows "To be
/// set". Later versions add members at the end.
typedef struct trackedcam_settings {
  uint32_t struct_size;      ///< Bytes, set by trackedcam_settings_init.
  int32_t board_columns;     ///< To be set: inner corners along a row, one less than squares.
  int32_t board_rows;        ///< To be set: inner corners along a column.
  int32_t expected_records;  ///< Rows that were recorded; -1 for as many as there are.
  double sensor_width_mm;    ///< To be set: width of the camera's sensor.
  double sensor_height_mm;   ///< To be set: height of the camera's sensor.
  double square_m;           ///< To be set: edge of one square of the chart.
  /// The mounting of the chart's tracker, where mounting_is_stated: three angles ax, ay, az. The
  /// rotation of Transform_Tr_Chart is Rx(ax) * Ry(ay) * Rz(az).
  double chart_rotation_deg[3];
  double chart_translation_m[3];       ///< And its translation: the first inner corner in Tr.
  int32_t mounting_is_stated;          ///< 0: the mounting is found from the shoot. 1: see above.
  int32_t mounting_axes;               ///< One of trackedcam_mounting_axes.
  int32_t tracker_axes;                ///< One of trackedcam_tracker_axes.
  int32_t tracker_unit;                ///< One of trackedcam_tracker_unit.
  int32_t invert_tracker_quaternions;  ///< 1: the trackers' quaternions give the inverse rotation.
  /// 1: where the cross-check finds another mounting or bad photographs, calibrate again with the
  /// mounting found and without those photographs.
  int32_t refine_mounting;
  int32_t silent;    ///< 1: while the run lasts, standard output of the whole process goes nowhere.
  int32_t reserved;  ///< 0.
  /// Folder in which relative paths of photographs begin. NULL: that of the data file; of a shoot
  /// from memory, the working directory of the process.
  const char* working_folder;
  /// To be set: folder for logs and reprojected photographs, created when missing. Each run makes a
  /// folder run_001, run_002 and so on in it.
  const char* log_folder;
} trackedcam_settings;

/// Fills the settings with what they are by default: what is to be set is 0 or NULL, with which no
/// run starts; the mounting is not stated; poses are as reported, in metres.
/// @param[out] settings To be filled.
/// @param struct_size sizeof(trackedcam_settings).
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_settings_init(trackedcam_settings* settings,
                                                            size_t struct_size);

/// @}
/// @defgroup c_run Runs
/// @{

/// A calibration that is going on or has ended.
typedef struct trackedcam_run trackedcam_run;
/// All that is known of a calibration when it has ended.
typedef struct trackedcam_report trackedcam_report;

/// How far a run is. With refine_mounting it may begin again.
typedef struct trackedcam_progress {
  char stage[64];              ///< In English: "Finding the board"; empty before the first.
  int32_t photographs_done;    ///< In this stage.
  int32_t photographs_in_all;  ///< 0 in a stage that does not go through the photographs.
} trackedcam_progress;

/// Told by trackedcam_calibrate how far it is, on the thread that called it. It must return: with
/// an exception or a jump out of it nobody knows what becomes of the caller.
/// @param progress Where the run is; steps that follow each other quickly are told as one.
/// @param user What the caller passed to trackedcam_calibrate.
typedef void (*trackedcam_progress_callback)(const trackedcam_progress* progress, void* user);

/// Calibrates a shoot and waits for it.
/// @param shoot To calibrate.
/// @param settings How.
/// @param progress Told how far it is, or NULL.
/// @param user For progress.
/// @param[out] report To be freed by trackedcam_report_free. It comes as well when the library
/// found
///   no result: see trackedcam_report_level.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_calibrate(trackedcam_shoot* shoot,
                                                        const trackedcam_settings* settings,
                                                        trackedcam_progress_callback progress,
                                                        void* user, trackedcam_report** report);

/// Starts to calibrate a shoot on a thread of its own, and returns at once. Rows that are added to
/// the shoot afterwards have no part in it.
/// @param shoot To calibrate.
/// @param settings How.
/// @param[out] run To be freed by trackedcam_run_free.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_start(trackedcam_shoot* shoot,
                                                    const trackedcam_settings* settings,
                                                    trackedcam_run** run);

/// How far a run is. Never waits.
/// @param run To ask about.
/// @param[out] is_done 1 when it has ended, else 0.
/// @param[out] progress Where it is, or NULL.
/// @param progress_size sizeof(trackedcam_progress); not used where progress is NULL.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_poll(trackedcam_run* run, int32_t* is_done,
                                                       trackedcam_progress* progress,
                                                       size_t progress_size);

/// Waits until a run has ended or the time is up.
/// @param run To wait for.
/// @param timeout_ms Milliseconds to wait at most; a negative number: as long as it takes.
/// @param[out] is_done 1 when it has ended, 0 when the time was up before.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_wait(trackedcam_run* run, int32_t timeout_ms,
                                                       int32_t* is_done);

/// The report of a run that has ended.
/// @param run That has ended.
/// @param[out] report A handle of its own, to be freed by trackedcam_report_free; it stays when the
///   run is freed.
/// @return TRACKEDCAM_NOT_DONE before the end. Where the run could not begin or was cut short, what
///   trackedcam_calibrate would have returned.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_report(trackedcam_run* run,
                                                         trackedcam_report** report);

/// Frees a run, also one that is going on: it then ends in the background.
/// @param run To be freed, or NULL.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_run_free(trackedcam_run* run);

/// Cross-checks a calibration by the log that the library wrote, whichever host called it.
/// @param log_file Path of the log.
/// @param settings For the mounting that the host passed to the library; nothing else of it is
///   read. NULL where the mounting is not known.
/// @param[out] report To be freed by trackedcam_report_free. It has no exports.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_crosscheck(const char* log_file,
                                                         const trackedcam_settings* settings,
                                                         trackedcam_report** report);

/// @}
/// @defgroup c_report Reports
/// @{

/// What a calibration came to, library and cross-check taken together.
enum trackedcam_level {
  TRACKEDCAM_GOOD = 0,   ///< To be used.
  TRACKEDCAM_DOUBT = 1,  ///< To be used, with a doubt.
  TRACKEDCAM_WRONG =
      2,  ///< The library calibrated, and the cross-check is certain that it is wrong.
  TRACKEDCAM_FAILED = 3  ///< There is no result to use.
};

/// The lens. The centre of the first pixel is (0, 0). A point (X, Y, Z) in Cam is seen at
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
  double p1;                  ///< 0, as are p2 and k3: they are held there.
  double p2;                  ///< See p1.
  double k3;                  ///< See p1.
  double horizontal_fov_deg;  ///< Field of view.
  double vertical_fov_deg;    ///< Field of view.
  double focal_length_mm;     ///< By the smaller pixel pitch.
} trackedcam_lens;

/// @param report To read.
/// @param[out] level One of trackedcam_level.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_level(trackedcam_report* report,
                                                           int32_t* level);

/// The result code of the library, as its function Calibration returns it: 0 success, 99 usable,
/// any other one is a failure.
/// @param report To read.
/// @param[out] code The code.
/// @return TRACKEDCAM_NOT_THERE where an exception ended the library's call.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_code(trackedcam_report* report, int32_t* code);

/// What the calibration came to, in English.
/// @param report To read.
/// @param[out] words What it came to.
/// @param[out] advice What to do; empty where there is nothing to do.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_verdict(trackedcam_report* report,
                                                             const char** words,
                                                             const char** advice);

/// The lens that the library found.
/// @param report To read.
/// @param[out] lens To be filled.
/// @param lens_size sizeof(trackedcam_lens).
/// @return TRACKEDCAM_NOT_THERE where it found none.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_lens(trackedcam_report* report,
                                                          trackedcam_lens* lens, size_t lens_size);

/// Transform_Cam_Tc as the library found it.
/// @param report To read.
/// @param[out] transform_cam_tc Sixteen numbers row by row, translation in metres.
/// @return TRACKEDCAM_NOT_THERE where it found none. A report of the level TRACKEDCAM_FAILED may
///   have one, which is not to be used.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_transform_cam_tc(trackedcam_report* report,
                                                                      double transform_cam_tc[16]);

/// The whole report as one JSON text, as the program writes it into its result file.
/// @param report To read.
/// @param[out] json The text. Exports that are made later are not in it.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_json(trackedcam_report* report,
                                                          const char** json);

/// All numbers below a place of that JSON text, in its order: of a number, a list or a list of
/// lists. What is null there is not a number. Each is that of the library, to the last bit.
/// @param report To read.
/// @param pointer A JSON pointer (RFC 6901): "/normFocal", "/crossCheck/covarianceCamTcTwist".
/// @param[out] values For the numbers; may be NULL where capacity is 0.
/// @param capacity So many of them fit into values.
/// @param[out] count So many there are. Filled with TRACKEDCAM_TOO_SMALL as well.
/// @return TRACKEDCAM_NOT_THERE where there is no such place, or where it holds anything else.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_numbers(trackedcam_report* report,
                                                             const char* pointer, double* values,
                                                             size_t capacity, size_t* count);

/// The text at a place of that JSON text, such as "/findings/0/text".
/// @param report To read.
/// @param pointer A JSON pointer.
/// @param[out] text What stands there.
/// @return TRACKEDCAM_NOT_THERE where there is no such place, or where it holds no text.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_text(trackedcam_report* report,
                                                          const char* pointer, const char** text);

/// How many elements a list of that JSON text has, such as "/findings".
/// @param report To read.
/// @param pointer A JSON pointer.
/// @param[out] count Elements of the list, or members of the object.
/// @return TRACKEDCAM_NOT_THERE where there is no such place, or where it holds neither.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_count(trackedcam_report* report,
                                                           const char* pointer, size_t* count);

/// Hands the result to an engine: where the camera is at its tracker, in the engine's axes. It is
/// added to the report, as "/exports/ue4" and so on.
/// @param report Of a calibration that did not fail.
/// @param engine unreal, unity, ue4, ue5, ue5-xn or aximmetry.
/// @param parent_axes For unreal and unity: X, Y and Z of the camera's parent in the tracker's
///   reported axes, such as "z,-x,y"; or "z-forward", "minus-z-forward". NULL: those that the
///   engine presumes. For the other engines NULL.
/// @param[out] json The figures, which name their units, and a code: 0, or that of the library,
/// such
///   as 3 for a gimbal lock. May be NULL.
/// @return TRACKEDCAM_NOT_THERE where the calibration failed.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_export(trackedcam_report* report,
                                                            const char* engine,
                                                            const char* parent_axes,
                                                            const char** json);

/// The content of a .ulens file, which the editor of Unreal imports as a Lens File: lens and place.
/// @param report Of a calibration that did not fail.
/// @param parent_axes As for trackedcam_report_export.
/// @param name Of the lens.
/// @param[out] text The content.
/// @return TRACKEDCAM_NOT_THERE where the calibration failed.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_lens_file(trackedcam_report* report,
                                                               const char* parent_axes,
                                                               const char* name, const char** text);

/// The report page: HTML that a browser shows without anything beside it.
/// @param report To show.
/// @param page_folder Where the page will lie: its links to log and images are relative to it.
/// NULL:
///   in the folder of the run.
/// @param[out] html The page.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_page(trackedcam_report* report,
                                                          const char* page_folder,
                                                          const char** html);

/// Writes the result file and the report page. A file that cannot be written whole leaves the old
/// one in place.
/// @param report To write.
/// @param json_file Path of the result file, or NULL.
/// @param page_file Path of the page, or NULL.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_save(trackedcam_report* report,
                                                          const char* json_file,
                                                          const char* page_file);

/// Frees a report, and with it all text that came from it.
/// @param report To be freed, or NULL.
/// @return TRACKEDCAM_OK, or why not.
TRACKEDCAM_C_API trackedcam_status trackedcam_report_free(trackedcam_report* report);

/// @}

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // TRACKEDCAM_TRACKEDCAM_C_H
