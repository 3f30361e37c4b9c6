// Everything that differs between operating systems.

#pragma once

#include <cstdio>
#include <ctime>
#include <memory>
#include <string>

namespace trackedcam {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file by its wide-character path in a mode of fopen; null when that fails or when the
/// path names a folder. Another process may have the file open at the same time.
File OpenFile(const std::wstring& path, const char* mode);

/// The current local time.
std::tm LocalTime();

/// Makes the console show UTF-8. Doing nothing, or failing, is no error.
void UseUtf8Console();

}  // namespace trackedcam
