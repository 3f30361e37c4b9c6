// Loads the C library by its path, calibrates, and unloads it while a run continues in the
// background: load_anywhere LIBRARY TRACKER_DATA.csv LOG_FOLDER

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "../../../examples/03_load_at_run_time/library.h"
#include "trackedcam/trackedcam_c.h"

namespace {

namespace fs = std::filesystem;

void* library = nullptr;

template <class Function>
Function* Find(Function* /*like*/, const char* name) {
  return reinterpret_cast<Function*>(FindFunction(library, name));
}
#define CALL(name) Find(static_cast<decltype(&name)>(nullptr), #name)

bool IsSuccessful(const fs::path& run) {
  for (const auto& entry : fs::directory_iterator(run)) {
    if (entry.path().extension() == ".txt") {
      std::ifstream log(entry.path(), std::ios::binary);
      const std::string text(std::istreambuf_iterator<char>(log), {});
      return text.find("Camera and Tracker Calibration successful.") != std::string::npos;
    }
  }
  return false;
}

int Fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return Fail("usage: load_anywhere LIBRARY TRACKER_DATA.csv LOG_FOLDER");
  }
  library = LoadLibraryByName(argv[1]);
  if (library == nullptr) {
    return Fail("the library cannot be loaded");
  }
  trackedcam_settings settings;
  if (CALL(trackedcam_settings_init)(&settings, sizeof settings) != TRACKEDCAM_OK) {
    return Fail(CALL(trackedcam_last_error)());
  }
  settings.sensor_width_mm = 36;
  settings.sensor_height_mm = 20.25;
  settings.board_columns = 9;
  settings.board_rows = 6;
  settings.square_m = 0.03;
  settings.log_folder = argv[3];
  trackedcam_shoot* shoot = nullptr;
  trackedcam_report* report = nullptr;
  trackedcam_run* run = nullptr;
  double transform[16];
  if (CALL(trackedcam_shoot_open)(argv[2], &shoot) != TRACKEDCAM_OK ||
      CALL(trackedcam_calibrate)(shoot, &settings, nullptr, nullptr, &report) != TRACKEDCAM_OK ||
      CALL(trackedcam_report_transform_cam_tc)(report, transform) != TRACKEDCAM_OK ||
      CALL(trackedcam_start)(shoot, &settings, &run) != TRACKEDCAM_OK ||
      CALL(trackedcam_run_free)(run) != TRACKEDCAM_OK) {
    return Fail(CALL(trackedcam_last_error)());
  }
  UnloadLibrary(library);
  // Without a stated mounting, each calibration makes two runs.
  const fs::path last = fs::u8path(argv[3]) / "run_004";
  while (!fs::exists(last) || !IsSuccessful(last)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  std::printf("tracker at %.17g %.17g %.17g m\n", transform[3], transform[7], transform[11]);
  return 0;
}
