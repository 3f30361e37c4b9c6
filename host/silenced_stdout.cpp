#include "host/silenced_stdout.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <system_error>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

std::mutex mutex;
int silencers = 0;
int saved = -1;  // a copy of the descriptor while standard output is silenced

// Text in the buffers of the streams belongs to the present target of standard output.
void FlushStreams() {
  std::cout.flush();
  std::fflush(stdout);
}

void Silence(int standardOutput) {
  FlushStreams();
  saved = DuplicateDescriptor(standardOutput);
  const int nowhere = OpenNowhere();
  const bool isDone = saved >= 0 && nowhere >= 0 && ReplaceDescriptor(standardOutput, nowhere);
  const int error = errno;
  CloseDescriptor(nowhere);
  if (!isDone) {
    CloseDescriptor(saved);
    saved = -1;
    throw std::system_error(error, std::generic_category(), "cannot redirect standard output");
  }
}

}  // namespace

// If standard output is closed, there is nothing to silence.
SilencedStdout::SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  const int standardOutput = StdoutDescriptor();
  if (silencers == 0 && standardOutput >= 0) {
    Silence(standardOutput);
  }
  ++silencers;
}

SilencedStdout::~SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (--silencers == 0 && saved >= 0) {
    FlushStreams();
    ReplaceDescriptor(StdoutDescriptor(), saved);
    CloseDescriptor(saved);
    saved = -1;
  }
}

}  // namespace trackedcam::host
