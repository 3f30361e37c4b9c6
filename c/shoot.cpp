#include "c/shoot.h"

#include "host/run/run_folder.h"
#include "host/text/file_text.h"

namespace trackedcam::c {

namespace fs = std::filesystem;

void Shoot::Add(host::RecordedRow row) {
  if (!dataFile_.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "The shoot is that of a data file.");
  }
  host::RequireName(row.photograph);
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

fs::path Shoot::WorkingFolder() const {
  return dataFile_.empty() ? fs::current_path() : dataFile_.parent_path();
}

Handles<trackedcam_shoot, Shoot>& Shoots() {
  static auto* const shoots = new Handles<trackedcam_shoot, Shoot>("shoot");
  return *shoots;
}

namespace {

host::TrackerPose PoseOf(const trackedcam_pose& pose) {
  const double* const position = pose.position;
  const double* const quaternion = pose.quaternion_wxyz;
  return {position[0],   position[1],   position[2],  quaternion[0],
          quaternion[1], quaternion[2], quaternion[3]};
}

}  // namespace
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

trackedcam_status trackedcam_shoot_free(trackedcam_shoot* shoot) {
  return Guarded([&] { Shoots().Free(shoot); });
}
