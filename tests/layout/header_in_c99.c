#include "trackedcam/trackedcam_c.h"

/* Calls functions through the header: a wrong declaration fails to link. */
int calibrate(const char* data_file, const char* log_folder, double transform_cam_tc[16]);

int calibrate(const char* data_file, const char* log_folder, double transform_cam_tc[16]) {
  trackedcam_shoot* shoot = NULL;
  trackedcam_report* report = NULL;
  trackedcam_settings settings;
  trackedcam_status status = trackedcam_settings_init(&settings, sizeof settings);
  settings.log_folder = log_folder;
  if (status == TRACKEDCAM_OK) {
    status = trackedcam_shoot_open(data_file, &shoot);
  }
  if (status == TRACKEDCAM_OK) {
    status = trackedcam_calibrate(shoot, &settings, NULL, NULL, &report);
  }
  if (status == TRACKEDCAM_OK) {
    status = trackedcam_report_transform_cam_tc(report, transform_cam_tc);
  }
  trackedcam_report_free(report);
  trackedcam_shoot_free(shoot);
  return status;
}
