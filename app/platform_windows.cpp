#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <system_error>

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
  return _isatty(_fileno(stream)) != 0;
}

void PrepareForWriting() {}  // a write fails, and streams have no numbers that files could take

void HoldBlasToOneThread() {}  // the DLL's is built without threads

SilencedStdout::SilencedStdout() {
  FlushStreams();
  original_ = Checked(_dup(_fileno(stdout)));
  const int nowhere = Checked(_open("NUL", _O_WRONLY | _O_NOINHERIT));
  Checked(_dup2(nowhere, _fileno(stdout)));
  _close(nowhere);
}

SilencedStdout::~SilencedStdout() {
  FlushStreams();
  _dup2(original_, _fileno(stdout));
  _close(original_);
}

}  // namespace trackedcam::app
