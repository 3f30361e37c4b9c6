/* Calibrates the shoot whose tracker data file is the first argument, from C; the log goes to the
 * second. The chart has 9x6 inner corners and squares of 30 mm, the sensor 36 x 20.25 mm. */

#include <stdio.h>
#include <trackedcam/trackedcam_c.h>

int main(int argc, char** argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: %s TRACKER_DATA.csv LOG_FOLDER\n", argv[0]);
    return 2;
  }
  const char* data = argv[1];
  const char* log_folder = argv[2];
  /* docs/other-languages.md begin */
  trackedcam_shoot* shoot = NULL;
  trackedcam_report* report = NULL;
  double transform_cam_tc[16]; /* row by row, metres */
  trackedcam_settings settings;
  trackedcam_settings_init(&settings, sizeof settings);
  settings.sensor_width_mm = 36;
  settings.sensor_height_mm = 20.25;
  settings.board_columns = 9;
  settings.board_rows = 6;
  settings.square_m = 0.03;
  settings.log_folder = log_folder;
  if (trackedcam_shoot_open(data, &shoot) != TRACKEDCAM_OK ||
      trackedcam_calibrate(shoot, &settings, NULL, NULL, &report) != TRACKEDCAM_OK ||
      trackedcam_report_transform_cam_tc(report, transform_cam_tc) != TRACKEDCAM_OK) {
    fprintf(stderr, "%s\n", trackedcam_last_error());
  } else {
    printf("camera tracker at %.4f %.4f %.4f m\n", transform_cam_tc[3], transform_cam_tc[7],
           transform_cam_tc[11]);
  }
  trackedcam_report_free(report);
  trackedcam_shoot_free(shoot);
  /* docs/other-languages.md end */
  return 0;
}
