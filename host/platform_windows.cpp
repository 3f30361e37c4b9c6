#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
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

int StdoutDescriptor() {
  return _fileno(stdout);  // negative in a program without a console
}

int OpenNowhere() {
  return _open("NUL", _O_WRONLY | _O_NOINHERIT);
}

int DuplicateDescriptor(int descriptor) {
  return _dup(descriptor);
}

bool ReplaceDescriptor(int descriptor, int by) {
  return _dup2(by, descriptor) >= 0;
}

void CloseDescriptor(int descriptor) {
  if (descriptor >= 0) {
    _close(descriptor);
  }
}

}  // namespace trackedcam::host
