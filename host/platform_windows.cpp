#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <mutex>
#include <system_error>

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

// A program without a console has no standard output, and nothing to silence.
SilencedStdout::SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  const int output = _fileno(stdout);
  if (living == 0 && output >= 0) {
    FlushStreams();
    original = Checked(_dup(output));
    const int nowhere = _open("NUL", _O_WRONLY | _O_NOINHERIT);
    if (nowhere < 0 || _dup2(nowhere, output) < 0) {
      _close(original);
      original = -1;
      Checked(-1);
    }
    _close(nowhere);
  }
  ++living;
}

SilencedStdout::~SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (--living == 0 && original >= 0) {
    FlushStreams();
    _dup2(original, _fileno(stdout));
    _close(original);
    original = -1;
  }
}

}  // namespace trackedcam::host
