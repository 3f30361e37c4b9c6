#include <cerrno>
#include <dlfcn.h>
#include <fcntl.h>
#include <iostream>
#include <system_error>
#include <unistd.h>

#include "app/platform.h"

namespace trackedcam::app {
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

}  // namespace

bool IsTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) == 1;
}

void HoldBlasToOneThread() {
  // Which BLAS stands behind the image library is the machine's choice: this one has the function.
  using SetThreads = void (*)(int);
  if (auto* const set =
          reinterpret_cast<SetThreads>(dlsym(RTLD_DEFAULT, "openblas_set_num_threads"))) {
    set(1);
  }
}

SilencedStdout::SilencedStdout() {
  FlushStreams();
  original_ = Checked(dup(STDOUT_FILENO));
  const int nowhere = Checked(open("/dev/null", O_WRONLY | O_CLOEXEC));
  Checked(dup2(nowhere, STDOUT_FILENO));
  close(nowhere);
}

SilencedStdout::~SilencedStdout() {
  FlushStreams();
  dup2(original_, STDOUT_FILENO);
  close(original_);
}

}  // namespace trackedcam::app
