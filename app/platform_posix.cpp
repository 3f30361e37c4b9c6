#include <cerrno>
#include <csignal>
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

void PrepareForWriting() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The lowest number that is free: this one. What is written to it fails, and that is told.
      [[maybe_unused]] const int opened = open("/dev/null", O_RDONLY);
    }
  }
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
