// Checks that memory does not grow in a host that runs for days: 500 calibrations in one process,
// and 1000 rounds of loading the library, calling it and unloading it. The measurement starts after
// some rounds, when the libraries underneath have filled their caches.
//
// Usage: soak_program LIBRARY FOLDER   (FOLDER gets a shoot and its logs)

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "simulator/write_shoot.h"

namespace {

namespace fs = std::filesystem;
using Numbers = std::vector<double>;
using CalibrationFunction = int (*)(std::string, double, double, int, int, double, Numbers, Numbers,
                                    Numbers&, Numbers&, Numbers&, Numbers&, Numbers&, Numbers&,
                                    Numbers&, std::string, bool, int);
using ExportFunction = int (*)(Numbers, Numbers&, Numbers&, std::string);

constexpr long kKilobyte = 1024;
constexpr int kWarmUp = 20;

// Resident memory of this process, kilobytes.
long ResidentKilobytes() {
  long all = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / kKilobyte);
}

class Library {
 public:
  explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {}
  ~Library() {
    if (handle_ != nullptr) {
      dlclose(handle_);
    }
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  template <class Function>
  Function Find(const char* name) const {
    return reinterpret_cast<Function>(handle_ == nullptr ? nullptr : dlsym(handle_, name));
  }

 private:
  void* handle_;
};

int Calibrate(const Library& library, const trackedcam::simulator::Mounting& mounting,
              const fs::path& folder) {
  const Eigen::Vector3d& angles = mounting.anglesDegrees;
  const Eigen::Vector3d& metres = mounting.translationMetres;
  Numbers size, focal, centre, distortion, transform, fieldOfView, focalLength;
  fs::remove_all(folder / "log");
  fs::create_directories(folder / "log" / "Reproject_photos");
  return library.Find<CalibrationFunction>("Calibration")(
      (folder / "tracker_data.csv").string(), 36, 20.25, 9, 6, 0.03,
      {angles.x(), angles.y(), angles.z()}, {metres.x(), metres.y(), metres.z()}, size, focal,
      centre, distortion, transform, fieldOfView, focalLength, (folder / "log").string(), false,
      1000000);
}

bool Export(const char* path, const fs::path& folder) {
  const Library library(path);
  const auto toEngine = library.Find<ExportFunction>("CamAxisToUE5");
  Numbers quaternion, translation;
  fs::remove_all(folder / "log");
  fs::create_directories(folder / "log");
  return toEngine != nullptr && toEngine({1, 0, 0, 0.01, 0, 1, 0, 0.02, 0, 0, 1, 0.03, 0, 0, 0, 1},
                                         quaternion, translation, (folder / "log").string()) == 0;
}

template <class Round>
bool Soak(const char* what, int rounds, long mostKilobytes, Round round) {
  long before = 0;
  for (int i = 0; i < kWarmUp + rounds; ++i) {
    if (!round()) {
      std::fprintf(stderr, "%s: round %d failed\n", what, i);
      return false;
    }
    before = i + 1 == kWarmUp ? ResidentKilobytes() : before;
  }
  const long growth = ResidentKilobytes() - before;
  std::fprintf(stderr, "%s: %d rounds grew by %ld kB, at most %ld\n", what, rounds, growth,
               mostKilobytes);
  return growth < mostKilobytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s LIBRARY FOLDER\n", argv[0]);
    return 2;
  }
  const std::string path = fs::absolute(argv[1]).string();
  const fs::path folder = argv[2];
  trackedcam::simulator::ShootOptions options;
  options.photographs = 14;
  options.imageWidth = 480;
  options.imageHeight = 270;
  const trackedcam::simulator::Shoot shoot = trackedcam::simulator::SimulateShoot(options);
  trackedcam::simulator::WriteShoot(shoot, folder);
  fs::current_path(folder);
  dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);  // suppresses the log

  // Must come first: the second measurement keeps the library loaded.
  const bool unloads =
      Soak("loading and unloading", 1000, 100, [&] { return Export(path.c_str(), folder); });
  const Library library(path.c_str());
  if (library.Find<CalibrationFunction>("Calibration") == nullptr) {
    std::fprintf(stderr, "cannot load %s\n", path.c_str());
    return 1;
  }
  const bool calibrates = Soak("calibrating", 500, kKilobyte, [&] {
    const int code = Calibrate(library, shoot.nominalMounting, folder);
    return code == 0 || code == 99;
  });
  return unloads && calibrates ? 0 : 1;
}
