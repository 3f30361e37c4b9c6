#include "c/settings.h"

#include "host/input/mounting_axes.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;

void RequireOneOf(std::int32_t number, std::int32_t last, const char* name) {
  if (number < 0 || number > last) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is " + std::to_string(number) +
                                                   ", which stands for nothing.");
  }
}

// Named as on the command line.
host::TrackerFrame FrameOf(const trackedcam_settings& settings) {
  host::TrackerFrame frame;
  frame.axes = &host::kTrackerAxes.at(static_cast<std::size_t>(settings.tracker_axes));
  if (settings.tracker_unit != TRACKEDCAM_UNIT_OF_AXES) {
    frame.unit = &host::kTrackerUnits.at(static_cast<std::size_t>(settings.tracker_unit) - 1);
  }
  return frame;
}

fs::path Absolute(const std::string& path) {
  return fs::absolute(fs::u8path(path));
}

}  // namespace

void RequireSettings(const trackedcam_settings* settings) {
  RequirePointer(settings, "settings");
  RequireSize(settings->struct_size, sizeof(trackedcam_settings), "settings");
  RequireOneOf(settings->mounting_is_stated, 1, "mounting_is_stated");
  RequireOneOf(settings->mounting_axes, TRACKEDCAM_MOUNTING_REPORTED, "mounting_axes");
  RequireOneOf(settings->tracker_axes, TRACKEDCAM_AXES_UNITY, "tracker_axes");
  RequireOneOf(settings->tracker_unit, TRACKEDCAM_UNIT_MILLIMETRES, "tracker_unit");
  RequireOneOf(settings->invert_tracker_quaternions, 1, "invert_tracker_quaternions");
  RequireOneOf(settings->refine_mounting, 1, "refine_mounting");
  RequireOneOf(settings->silent, 1, "silent");
  RequireOneOf(settings->reserved, 0, "reserved");
}

std::optional<host::Mounting> MountingOf(const trackedcam_settings& settings) {
  if (settings.mounting_is_stated == 0) {
    return std::nullopt;
  }
  const double* const rotation = settings.chart_rotation_deg;
  const double* const translation = settings.chart_translation_m;
  const host::Mounting mounting = {{rotation[0], rotation[1], rotation[2]},
                                   {translation[0], translation[1], translation[2]}};
  return settings.mounting_axes == TRACKEDCAM_MOUNTING_REPORTED ? host::FromReportedAxes(mounting)
                                                                : mounting;
}

host::Inputs InputsOf(const Shoot& shoot, const trackedcam_settings& settings) {
  const std::string logFolder = RequireText(settings.log_folder, "log_folder");
  const std::string workingFolder = OptionalText(settings.working_folder, "working_folder");
  if (logFolder.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "log_folder is empty.");
  }
  host::Inputs inputs;
  inputs.trackerFrame = FrameOf(settings);
  inputs.workingFolder = workingFolder.empty() ? shoot.WorkingFolder() : Absolute(workingFolder);
  inputs.sensorMm = {settings.sensor_width_mm, settings.sensor_height_mm};
  inputs.board = {settings.board_columns, settings.board_rows};
  inputs.squareMetres = settings.square_m;
  inputs.mounting = MountingOf(settings);
  inputs.invertTrackerQuaternions = settings.invert_tracker_quaternions != 0;
  if (settings.expected_records != -1) {
    inputs.expectedRecords = settings.expected_records;
  }
  inputs.logFolder = Absolute(logFolder);
  inputs.refineMounting = settings.refine_mounting != 0;
  host::RequirePossible(inputs);
  inputs.data = shoot.DataFile(inputs.logFolder);
  return inputs;
}

}  // namespace trackedcam::c

using namespace trackedcam::c;

trackedcam_status trackedcam_settings_init(trackedcam_settings* settings, size_t struct_size) {
  return Guarded([&] {
    RequirePointer(settings, "settings");
    RequireSize(struct_size, sizeof(trackedcam_settings), "settings");
    *settings = {};
    settings->struct_size = sizeof(trackedcam_settings);
    settings->expected_records = -1;
  });
}
