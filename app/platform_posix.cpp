#include <array>
#include <cerrno>
#include <dlfcn.h>
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

std::string AnyReadableFile() {
  return "/dev/null";
}

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

StdoutPipe::StdoutPipe() {
  FlushStreams();
  original_ = Checked(dup(STDOUT_FILENO));
  std::array<int, 2> ends = {};
  Checked(pipe(ends.data()));
  readEnd_ = ends[0];
  // Standard output becomes the only way in, so that restoring it ends the pipe.
  Checked(dup2(ends[1], STDOUT_FILENO));
  close(ends[1]);
}

StdoutPipe::~StdoutPipe() {
  Restore();
  close(original_);
  close(readEnd_);
}

std::size_t StdoutPipe::Read(char* buffer, std::size_t size) {
  ssize_t length = 0;
  do {
    length = read(readEnd_, buffer, size);
  } while (length < 0 && errno == EINTR);
  return length < 0 ? 0 : static_cast<std::size_t>(length);
}

void StdoutPipe::WriteToOriginal(std::string_view text) {
  while (!text.empty()) {
    const ssize_t length = write(original_, text.data(), text.size());
    if (length < 0 && errno != EINTR) {
      return;
    }
    text.remove_prefix(length < 0 ? 0 : static_cast<std::size_t>(length));
  }
}

void StdoutPipe::Restore() {
  FlushStreams();
  dup2(original_, STDOUT_FILENO);
}

}  // namespace trackedcam::app
