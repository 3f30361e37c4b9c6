// Everything of the program that differs between operating systems.

#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace trackedcam::app {

/// A file that every machine has and anyone may read, by a path in ASCII.
std::string AnyReadableFile();

bool IsTerminal(std::FILE* stream);

/// Linear algebra on the caller's thread alone, also where an OpenBLAS with threads is installed.
/// Its threads wait for each other by spinning, so that beside busy programs a lens takes many
/// times as long; alone they gain nothing. Setting OPENBLAS_NUM_THREADS is no way: it is read at
/// loading.
void HoldBlasToOneThread();

/// While it lives, what the process writes to standard output arrives here instead. Below the
/// streams, at the file descriptor, so that it holds for libraries as well.
class StdoutPipe {
 public:
  /// @throws std::system_error
  StdoutPipe();
  ~StdoutPipe();
  StdoutPipe(const StdoutPipe&) = delete;
  StdoutPipe& operator=(const StdoutPipe&) = delete;

  /// Waits for output. Returns how many bytes it read; 0 after Restore when nothing is left.
  std::size_t Read(char* buffer, std::size_t size);

  /// Writes to where standard output led before.
  void WriteToOriginal(std::string_view text);

  /// Standard output leads where it did before.
  void Restore();

 private:
  int original_;
  int readEnd_;
};

}  // namespace trackedcam::app
