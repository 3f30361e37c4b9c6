#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

#include "app/platform.h"

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) == 1;
}

// No line ends are converted on this system.
BinaryOutput::BinaryOutput(std::FILE* stream) : stream_(stream) {}

BinaryOutput::~BinaryOutput() {
  std::fflush(stream_);
}

void PrepareForWriting() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // Gets the lowest free number, which is this one. Writing to it fails and is reported.
      [[maybe_unused]] const int opened = open("/dev/null", O_RDONLY);
    }
  }
}

namespace {

volatile std::sig_atomic_t hasInterruptCome = 0;

void NoteInterrupt(int /*signal*/) {
  hasInterruptCome = 1;
}

}  // namespace

Interrupts::Interrupts() {
  hasInterruptCome = 0;
  std::signal(SIGINT, NoteInterrupt);
  std::signal(SIGTERM, NoteInterrupt);
}

Interrupts::~Interrupts() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool Interrupts::HasCome() {
  return hasInterruptCome != 0;
}

void HoldBlasToOneThread() {
  // Only if the BLAS of this machine is OpenBLAS does the function exist.
  using SetThreads = void (*)(int);
  if (auto* const set =
          reinterpret_cast<SetThreads>(dlsym(RTLD_DEFAULT, "openblas_set_num_threads"))) {
    set(1);
  }
}

}  // namespace trackedcam::app
