#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <fcntl.h>
#include <io.h>
#include <string>
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

bool MayWrite(const fs::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

bool IsSystemFolder(const fs::path& folder) {
  const std::wstring begin = folder.native().substr(0, 4);
  return begin == L"\\\\.\\";
}

// Such as NUL, con and COM1.txt.
bool IsDevice(const fs::path& file) {
  std::wstring name = file.filename().native();
  name = name.substr(0, name.find_first_of(L".: "));
  std::transform(name.begin(), name.end(), name.begin(),
                 [](wchar_t letter) { return static_cast<wchar_t>(std::towupper(letter)); });
  const bool isPort = name.size() == 4 && name[3] >= L'1' && name[3] <= L'9' &&
                      (name.substr(0, 3) == L"COM" || name.substr(0, 3) == L"LPT");
  return isPort || name == L"NUL" || name == L"CON" || name == L"PRN" || name == L"AUX";
}

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
