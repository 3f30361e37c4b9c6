// Ends the process while a run is going on: exit_during_run TRACKER_DATA.csv LOG_FOLDER
// MILLISECONDS [fork]
//
// With fork, a child process ends meanwhile, and prints to its standard output first.
//
// Prints how many static objects were made after the start of the run. The run may still need them
// when the process destroys them. Nothing but the run uses the image library here, so that nothing
// else makes its objects.

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "trackedcam/trackedcam_c.h"

namespace {

std::atomic<bool> isStarted{false};
std::atomic<int> made{0};

void PrintCount() {
  std::printf("%d made\n", made.load());
}

// False unless the child ends while the run goes on.
bool ForkAndWait(trackedcam_run* run) {
  const pid_t child = fork();
  if (child == 0) {
    std::printf("child\n");
    std::exit(0);
  }
  std::int32_t isDone = 0;
  int status = 1;
  while (waitpid(child, &status, WNOHANG) == 0) {
    trackedcam_run_wait(run, 10, &isDone);
    if (isDone != 0) {
      kill(child, SIGKILL);
    }
  }
  return isDone == 0 && status == 0;
}

}  // namespace

// A child process has no run, and so nothing refers to what the run has allocated.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier): the sanitizer's name
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "detect_leaks=0";
}

// Every static object registers its destructor here, in the program and in all libraries.
// NOLINTNEXTLINE(readability-identifier-naming): the system's own name
extern "C" __attribute__((visibility("default"))) int __cxa_atexit(void (*destructor)(void*),
                                                                   void* object, void* library) {
  using Function = int(void (*)(void*), void*, void*);
  static Function* const next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "__cxa_atexit"));
  made += isStarted ? 1 : 0;
  return next(destructor, object, library);
}

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr,
                 "usage: exit_during_run TRACKER_DATA.csv LOG_FOLDER MILLISECONDS [fork]\n");
    return 2;
  }
  std::atexit(PrintCount);  // the first, so it is called last
  trackedcam_settings settings;
  trackedcam_shoot* shoot = nullptr;
  trackedcam_run* run = nullptr;
  if (trackedcam_settings_init(&settings, sizeof settings) != TRACKEDCAM_OK ||
      trackedcam_shoot_open(argv[1], &shoot) != TRACKEDCAM_OK) {
    std::fprintf(stderr, "%s\n", trackedcam_last_error());
    return 1;
  }
  settings.sensor_width_mm = 36;
  settings.sensor_height_mm = 20.25;
  settings.board_columns = 9;
  settings.board_rows = 6;
  settings.square_m = 0.03;
  settings.log_folder = argv[2];
  if (trackedcam_start(shoot, &settings, &run) != TRACKEDCAM_OK) {
    std::fprintf(stderr, "%s\n", trackedcam_last_error());
    return 1;
  }
  isStarted = true;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[3])));
  if (argc == 5 && !ForkAndWait(run)) {
    std::fprintf(stderr, "the child did not end before the run\n");
    return 1;
  }
  return 0;
}
