#include <share.h>
#include <time.h>
#include <windows.h>

#include "core/platform.h"

namespace trackedcam {

File OpenFile(const std::wstring& path, const char* mode) {
  const std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
  return File(_wfsopen(path.c_str(), wideMode.c_str(), _SH_DENYNO));
}

std::tm LocalTime() {
  const __time64_t now = _time64(nullptr);
  std::tm local = {};
  _localtime64_s(&local, &now);
  return local;
}

void UseUtf8Console() {
  SetConsoleOutputCP(CP_UTF8);  // fails without a console, where it is not needed
}

}  // namespace trackedcam
