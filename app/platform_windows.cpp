#include <array>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <system_error>
#include <windows.h>

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
  std::array<char, MAX_PATH> folder = {};
  GetSystemDirectoryA(folder.data(), MAX_PATH);
  return std::string(folder.data()) + "\\kernel32.dll";
}

bool IsTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

void HoldBlasToOneThread() {}  // the DLL's is built without threads

StdoutPipe::StdoutPipe() {
  FlushStreams();
  original_ = Checked(_dup(_fileno(stdout)));
  std::array<int, 2> ends = {};
  constexpr unsigned kBytes = 1 << 16;
  // In text mode, as standard output is: its line ends arrive as line feeds.
  Checked(_pipe(ends.data(), kBytes, _O_TEXT | _O_NOINHERIT));
  readEnd_ = ends[0];
  // Standard output becomes the only way in, so that restoring it ends the pipe.
  Checked(_dup2(ends[1], _fileno(stdout)));
  _close(ends[1]);
}

StdoutPipe::~StdoutPipe() {
  Restore();
  _close(original_);
  _close(readEnd_);
}

std::size_t StdoutPipe::Read(char* buffer, std::size_t size) {
  const int length = _read(readEnd_, buffer, static_cast<unsigned>(size));
  return length < 0 ? 0 : static_cast<std::size_t>(length);
}

void StdoutPipe::WriteToOriginal(std::string_view text) {
  while (!text.empty()) {
    const int length = _write(original_, text.data(), static_cast<unsigned>(text.size()));
    if (length <= 0) {
      return;
    }
    text.remove_prefix(static_cast<std::size_t>(length));
  }
}

void StdoutPipe::Restore() {
  FlushStreams();
  _dup2(original_, _fileno(stdout));
}

}  // namespace trackedcam::app
