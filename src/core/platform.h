// The functions of the library that differ between operating systems.

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

/// Opens a file in a mode of fopen. Other processes may have it open at the same time.
/// @return Null if the file cannot be opened or the path is that of a folder.
File OpenFile(const std::wstring& path, const char* mode);

/// The current local time.
std::tm LocalTime();

/// Makes the console show UTF-8, where that needs a call. A failure is ignored.
void UseUtf8Console();

}  // namespace trackedcam
