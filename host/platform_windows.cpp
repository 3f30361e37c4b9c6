#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <mutex>
#include <system_error>
#include <windows.h>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostAtOnce = 1 << 30;

std::error_code LastError() {
  const DWORD error = GetLastError();
  return error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS
             ? std::make_error_code(std::errc::file_exists)
             : std::error_code(static_cast<int>(error), std::system_category());
}

std::error_code WriteAll(HANDLE file, const std::string& content) {
  for (std::size_t done = 0; done < content.size();) {
    const auto count = static_cast<DWORD>((std::min)(content.size() - done, kMostAtOnce));
    DWORD written = 0;
    if (::WriteFile(file, content.data() + done, count, &written, nullptr) == 0) {
      return LastError();
    }
    done += written;
  }
  return FlushFileBuffers(file) != 0 ? std::error_code() : LastError();
}

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

std::error_code WriteNewFile(const fs::path& file, const std::string& content) {
  const HANDLE opened = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return LastError();
  }
  std::error_code error = WriteAll(opened, content);
  if (CloseHandle(opened) == 0 && !error) {
    error = LastError();
  }
  if (error) {
    DeleteFileW(file.c_str());
  }
  return error;
}

void FlushFolder(const fs::path& /*folder*/) {}  // the file system does so itself

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
