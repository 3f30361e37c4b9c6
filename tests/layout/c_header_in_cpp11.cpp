#include "trackedcam/trackedcam_c.h"

// Programs in other languages declare these structs themselves: later versions may only append.
static_assert(sizeof(trackedcam_pose) == 56, "position and quaternion");
static_assert(sizeof(trackedcam_progress) == 72, "stage and two counts");
static_assert(sizeof(trackedcam_lens) == 14 * 8, "fourteen numbers");
static_assert(offsetof(trackedcam_settings, sensor_width_mm) == 16, "four counts before");
static_assert(offsetof(trackedcam_settings, mounting_is_stated) == 88, "nine numbers before");
static_assert(offsetof(trackedcam_settings, working_folder) == 120, "eight choices before");
static_assert(offsetof(trackedcam_settings, good_enough_mm) == 120 + 2 * sizeof(char*),
              "two folders before");
static_assert(sizeof(trackedcam_settings) == 120 + 2 * sizeof(char*) + 3 * 8 + 2 * sizeof(char*),
              "three numbers, the photographs to leave out and the distances at the end");

extern trackedcam_status (*const create)(trackedcam_shoot**) = &trackedcam_shoot_create;
