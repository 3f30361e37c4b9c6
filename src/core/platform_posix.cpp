#include <sys/stat.h>
#include <time.h>

#include "core/platform.h"
#include "core/utf8.h"

namespace trackedcam {
namespace {

// fopen can open a folder for reading; only reading from it fails.
bool IsFolder(std::FILE* file) {
  struct stat status = {};
  return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

File OpenFile(const std::wstring& path, const char* mode) {
  File file(std::fopen(Utf8FromWide(path).c_str(), mode));
  if (file && IsFolder(file.get())) {
    return nullptr;
  }
  return file;
}

std::tm LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  localtime_r(&now, &local);
  return local;
}

void UseUtf8Console() {}

}  // namespace trackedcam
