/* Prints the layout of the structs of the header, to compare it with other languages. */

#include <stdio.h>

#include "trackedcam/trackedcam_c.h"

#define SIZE(type) printf(#type " %u\n", (unsigned)sizeof(type))
#define AT(type, member) printf(#type "." #member " %u\n", (unsigned)offsetof(type, member))

int main(void) {
  SIZE(trackedcam_pose);
  AT(trackedcam_pose, position);
  AT(trackedcam_pose, quaternion_wxyz);
  SIZE(trackedcam_settings);
  AT(trackedcam_settings, struct_size);
  AT(trackedcam_settings, board_columns);
  AT(trackedcam_settings, board_rows);
  AT(trackedcam_settings, expected_records);
  AT(trackedcam_settings, sensor_width_mm);
  AT(trackedcam_settings, sensor_height_mm);
  AT(trackedcam_settings, square_m);
  AT(trackedcam_settings, chart_rotation_deg);
  AT(trackedcam_settings, chart_translation_m);
  AT(trackedcam_settings, mounting_is_stated);
  AT(trackedcam_settings, mounting_axes);
  AT(trackedcam_settings, tracker_axes);
  AT(trackedcam_settings, tracker_unit);
  AT(trackedcam_settings, invert_tracker_quaternions);
  AT(trackedcam_settings, refine_mounting);
  AT(trackedcam_settings, quaternion_order);
  AT(trackedcam_settings, at_count);
  AT(trackedcam_settings, working_folder);
  AT(trackedcam_settings, log_folder);
  AT(trackedcam_settings, good_enough_mm);
  AT(trackedcam_settings, good_enough_deg);
  AT(trackedcam_settings, scale_uncertainty_percent);
  AT(trackedcam_settings, exclude);
  AT(trackedcam_settings, at_m);
  SIZE(trackedcam_export_options);
  AT(trackedcam_export_options, struct_size);
  AT(trackedcam_export_options, even_if_wrong);
  AT(trackedcam_export_options, nodal_offset);
  AT(trackedcam_export_options, reserved);
  AT(trackedcam_export_options, overscan);
  AT(trackedcam_export_options, parent_axes);
  AT(trackedcam_export_options, preview_file);
  SIZE(trackedcam_verify_options);
  AT(trackedcam_verify_options, struct_size);
  AT(trackedcam_verify_options, chart_remounted);
  AT(trackedcam_verify_options, board_columns);
  AT(trackedcam_verify_options, board_rows);
  AT(trackedcam_verify_options, square_m);
  AT(trackedcam_verify_options, working_folder);
  AT(trackedcam_verify_options, at_m);
  AT(trackedcam_verify_options, at_count);
  AT(trackedcam_verify_options, reserved);
  SIZE(trackedcam_pair_options);
  AT(trackedcam_pair_options, struct_size);
  AT(trackedcam_pair_options, board_columns);
  AT(trackedcam_pair_options, board_rows);
  AT(trackedcam_pair_options, photographs);
  AT(trackedcam_pair_options, square_m);
  AT(trackedcam_pair_options, camera_poses);
  AT(trackedcam_pair_options, chart_poses);
  AT(trackedcam_pair_options, frames);
  AT(trackedcam_pair_options, times);
  AT(trackedcam_pair_options, frames_per_second);
  AT(trackedcam_pair_options, pose_format);
  AT(trackedcam_pair_options, columns);
  AT(trackedcam_pair_options, pose_unit);
  AT(trackedcam_pair_options, time_unit);
  AT(trackedcam_pair_options, sensor_width_mm);
  AT(trackedcam_pair_options, sensor_height_mm);
  AT(trackedcam_pair_options, out_folder);
  SIZE(trackedcam_progress);
  AT(trackedcam_progress, stage);
  AT(trackedcam_progress, photographs_done);
  AT(trackedcam_progress, photographs_in_all);
  SIZE(trackedcam_lens);
  AT(trackedcam_lens, image_width_px);
  AT(trackedcam_lens, image_height_px);
  AT(trackedcam_lens, fx_px);
  AT(trackedcam_lens, fy_px);
  AT(trackedcam_lens, cx_px);
  AT(trackedcam_lens, cy_px);
  AT(trackedcam_lens, k1);
  AT(trackedcam_lens, k2);
  AT(trackedcam_lens, p1);
  AT(trackedcam_lens, p2);
  AT(trackedcam_lens, k3);
  AT(trackedcam_lens, horizontal_fov_deg);
  AT(trackedcam_lens, vertical_fov_deg);
  AT(trackedcam_lens, focal_length_mm);
  return 0;
}
