/* A host for Windows from another compiler: without a runtime, only this library and the kernel.
 *
 * In the working directory it calibrates tracker_data.csv, finds the mounting, and writes
 * host.json; the log goes to the folder log. Its exit status is that of the call that failed.
 */

#include "trackedcam/trackedcam_c.h"

typedef void* Handle;
__declspec(dllimport) Handle __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(Handle file, const void* bytes, unsigned long count,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned status);

int _fltused = 0; /* the compiler refers to it in code with floating-point numbers */

static trackedcam_settings settings;
static int steps;

static void count_step(const trackedcam_progress* progress, void* user) {
  if (user == &steps && progress->stage[0] != 0) {
    ++steps;
  }
}

static void print_error(void) {
  const char* const text = trackedcam_last_error();
  unsigned long length = 0;
  while (text[length] != 0) {
    ++length;
  }
  WriteFile(GetStdHandle((unsigned long)-12), text, length, &length, 0);
}

static trackedcam_status calibrate(void) {
  trackedcam_shoot* shoot = 0;
  trackedcam_report* report = 0;
  trackedcam_status status = trackedcam_settings_init(&settings, sizeof settings);
  if (status == TRACKEDCAM_OK) {
    settings.sensor_width_mm = 36;
    settings.sensor_height_mm = 20.25;
    settings.board_columns = 9;
    settings.board_rows = 6;
    settings.square_m = 0.03;
    settings.log_folder = "log";
    status = trackedcam_shoot_open("tracker_data.csv", &shoot);
  }
  if (status == TRACKEDCAM_OK) {
    status = trackedcam_calibrate(shoot, &settings, count_step, &steps, &report);
  }
  if (status == TRACKEDCAM_OK) {
    status = trackedcam_report_save(report, "host.json", 0);
  }
  if (status != TRACKEDCAM_OK) {
    print_error();
  }
  trackedcam_report_free(report);
  trackedcam_shoot_free(shoot);
  return status;
}

void start(void) {
  const trackedcam_status status = calibrate();
  ExitProcess(status != TRACKEDCAM_OK ? (unsigned)status : steps == 0 ? 99 : 0);
}
