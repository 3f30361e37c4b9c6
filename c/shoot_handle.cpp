#include "c/shoot_handle.h"

#include <algorithm>
#include <cmath>

#include "host/input/continued_data.h"
#include "host/input/reported_axes.h"
#include "host/run/run_folder.h"
#include "host/text/files.h"

namespace trackedcam::c {

namespace fs = std::filesystem;

namespace {

void RequirePose(const char* tracker, const host::TrackerPose& pose) {
  const auto isFinite = [](double number) { return std::isfinite(number); };
  const auto isZero = [](double number) { return number == 0; };
  if (!std::all_of(pose.begin(), pose.end(), isFinite)) {
    throw host::InputError("the pose of the " + std::string(tracker) +
                           "'s tracker contains an infinite or NaN value");
  }
  if (std::all_of(pose.begin() + 3, pose.end(), isZero)) {
    throw host::InputError("the quaternion of the " + std::string(tracker) +
                           "'s tracker is zero: leave out photographs without tracking");
  }
}

}  // namespace

void Shoot::Add(host::RecordedRow row) {
  if (!dataFile_.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "Rows cannot be added to a shoot from a data file.");
  }
  host::RequireName(row.photograph);
  if (!std::isfinite(row.timeSeconds)) {
    throw host::InputError("the time of " + row.photograph + " is infinite or NaN");
  }
  RequirePose("camera", row.camera);
  RequirePose("chart", row.chart);
  const std::lock_guard<std::mutex> lock(mutex_);
  rows_.push_back(std::move(row));
}

fs::path Shoot::DataFile(const fs::path& logFolder) const {
  if (!dataFile_.empty()) {
    return dataFile_;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  if (rows_.empty()) {
    throw host::InputError("the shoot has no photographs");
  }
  fs::path file = host::CreateNumberedFolder(logFolder, "shoot") / "tracker_data.csv";
  host::WriteFile(file, host::DataText(rows_));
  return file;
}

void Shoot::Save(const fs::path& file) const {
  if (!dataFile_.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "The shoot is a data file already.");
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  if (rows_.empty()) {
    throw host::InputError("the shoot has no photographs");
  }
  host::WriteFile(file, host::DataText(rows_));
}

void Shoot::Continue(fs::path dataFile) {
  if (dataFile_.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "A shoot in memory has no data file to continue.");
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  moreData_.push_back(std::move(dataFile));
}

std::vector<fs::path> Shoot::MoreData() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return moreData_;
}

fs::path Shoot::WorkingFolder() const {
  return dataFile_.empty() ? fs::current_path() : host::FolderOfData(dataFile_, MoreData());
}

Handles<trackedcam_shoot, Shoot>& Shoots() {
  static auto* const shoots = new Handles<trackedcam_shoot, Shoot>("shoot");
  return *shoots;
}

namespace {

constexpr std::int32_t kMostDistances = 100;  // so that no wild count is read

host::TrackerPose PoseOf(const trackedcam_pose& pose) {
  const double* const position = pose.position;
  const double* const quaternion = pose.quaternion_wxyz;
  return {position[0],   position[1],   position[2],  quaternion[0],
          quaternion[1], quaternion[2], quaternion[3]};
}

void RequireOneOf(std::int32_t number, std::int32_t last, const char* name) {
  if (number < 0 || number > last) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is " + std::to_string(number) +
                                                   ", expected 0 to " + std::to_string(last) + '.');
  }
}

// The tables are in the order of the enumerations of the header.
host::TrackerFrame FrameOf(const trackedcam_settings& settings) {
  host::TrackerFrame frame;
  frame.axes = &host::kTrackerAxes.at(static_cast<std::size_t>(settings.tracker_axes));
  if (settings.tracker_unit != TRACKEDCAM_UNIT_OF_AXES) {
    frame.unit = &host::kTrackerUnits.at(static_cast<std::size_t>(settings.tracker_unit) - 1);
  }
  frame.hasQuaternionsXyzw = settings.quaternion_order == TRACKEDCAM_QUATERNION_XYZW;
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
  RequireOneOf(settings->tracker_unit, TRACKEDCAM_UNIT_INCHES, "tracker_unit");
  RequireOneOf(settings->invert_tracker_quaternions, 1, "invert_tracker_quaternions");
  RequireOneOf(settings->refine_mounting, 1, "refine_mounting");
  RequireOneOf(settings->quaternion_order, TRACKEDCAM_QUATERNION_XYZW, "quaternion_order");
  AtMetresOf(settings->at_m, settings->at_count);
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

host::Accuracy GoodEnoughOf(const trackedcam_settings& settings) {
  return {settings.good_enough_mm, settings.good_enough_deg};
}

double ScaleUncertaintyOf(const trackedcam_settings& settings) {
  return settings.scale_uncertainty_percent / 100;
}

std::vector<std::string> ExcludeOf(const trackedcam_settings& settings) {
  const std::string text = OptionalText(settings.exclude, "exclude");
  std::vector<std::string> names;
  for (const std::string_view name : host::SplitFields(text)) {
    if (!host::Trim(name).empty()) {
      names.emplace_back(host::Trim(name));
    }
  }
  return names;
}

std::vector<double> AtMetresOf(const double* at, std::int32_t count) {
  RequireOneOf(count, kMostDistances, "at_count");
  if (count > 0) {
    RequirePointer(at, "at_m");
  }
  return {at, at + count};
}

host::Inputs InputsOf(const Shoot& shoot, const trackedcam_settings& settings) {
  const std::string logFolder = RequireText(settings.log_folder, "log_folder");
  const std::string workingFolder = OptionalText(settings.working_folder, "working_folder");
  if (logFolder.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "log_folder is empty.");
  }
  host::Inputs inputs;
  inputs.trackerFrame = FrameOf(settings);
  inputs.exclude = ExcludeOf(settings);
  inputs.atMetres = AtMetresOf(settings.at_m, settings.at_count);
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
  inputs.goodEnough = GoodEnoughOf(settings);
  inputs.scaleUncertainty = ScaleUncertaintyOf(settings);
  host::RequirePossible(inputs);
  inputs.data = shoot.DataFile(inputs.logFolder);
  inputs.moreData = shoot.MoreData();
  return inputs;
}

}  // namespace trackedcam::c

using namespace trackedcam::c;

trackedcam_status trackedcam_shoot_create(trackedcam_shoot** shoot) {
  return Guarded([&] {
    RequirePointer(shoot, "shoot");
    *shoot = Shoots().Add(std::make_shared<Shoot>());
  });
}

trackedcam_status trackedcam_shoot_open(const char* data_file, trackedcam_shoot** shoot) {
  return Guarded([&] {
    const std::string file = RequireText(data_file, "data_file");
    RequirePointer(shoot, "shoot");
    if (file.empty()) {
      throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "data_file is empty.");
    }
    *shoot = Shoots().Add(
        std::make_shared<Shoot>(std::filesystem::absolute(std::filesystem::u8path(file))));
  });
}

trackedcam_status trackedcam_shoot_continue(trackedcam_shoot* shoot, const char* data_file) {
  return Guarded([&] {
    const auto to = Shoots().Get(shoot);
    const std::string file = RequireText(data_file, "data_file");
    if (file.empty()) {
      throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "data_file is empty.");
    }
    to->Continue(Absolute(file));
  });
}

trackedcam_status trackedcam_shoot_add(trackedcam_shoot* shoot, double time_s,
                                       const char* photograph, const trackedcam_pose* camera,
                                       const trackedcam_pose* chart) {
  return Guarded([&] {
    const auto to = Shoots().Get(shoot);
    const std::string name = RequireText(photograph, "photograph");
    RequirePointer(camera, "camera");
    RequirePointer(chart, "chart");
    to->Add({time_s, name, PoseOf(*camera), PoseOf(*chart)});
  });
}

trackedcam_status trackedcam_shoot_save(trackedcam_shoot* shoot, const char* data_file) {
  return Guarded([&] {
    const auto saved = Shoots().Get(shoot);
    const std::string file = RequireText(data_file, "data_file");
    if (file.empty()) {
      throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "data_file is empty.");
    }
    saved->Save(Absolute(file));
  });
}

trackedcam_status trackedcam_shoot_free(trackedcam_shoot* shoot) {
  return Guarded([&] { Shoots().Free(shoot); });
}

trackedcam_status trackedcam_settings_init(trackedcam_settings* settings, size_t struct_size) {
  return Guarded([&] {
    RequirePointer(settings, "settings");
    RequireSize(struct_size, sizeof(trackedcam_settings), "settings");
    *settings = {};
    settings->struct_size = sizeof(trackedcam_settings);
    settings->expected_records = -1;
    const trackedcam::host::Accuracy goodEnough;
    settings->good_enough_mm = goodEnough.mm;
    settings->good_enough_deg = goodEnough.degrees;
    settings->scale_uncertainty_percent = 100 * trackedcam::host::Inputs().scaleUncertainty;
  });
}
