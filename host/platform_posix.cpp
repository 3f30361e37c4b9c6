#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <mutex>
#include <system_error>
#include <unistd.h>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

int Checked(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot redirect standard output");
  }
  return result;
}

// What waits in the streams' buffers belongs to where standard output leads now.
void FlushStreams() {
  std::cout.flush();
  std::fflush(stdout);
}

std::mutex mutex;
int living = 0;
int original = -1;

}  // namespace

// A process whose standard output is closed has nothing to silence.
SilencedStdout::SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (living == 0 && fcntl(STDOUT_FILENO, F_GETFD) >= 0) {
    FlushStreams();
    original = Checked(dup(STDOUT_FILENO));
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
      close(original);
      original = -1;
      Checked(-1);
    }
    close(nowhere);
  }
  ++living;
}

SilencedStdout::~SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (--living == 0 && original >= 0) {
    FlushStreams();
    dup2(original, STDOUT_FILENO);
    close(original);
    original = -1;
  }
}

}  // namespace trackedcam::host
