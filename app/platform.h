// Everything of the program that differs between operating systems.

#pragma once

#include <cstdio>

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream);

/// While it exists, no line ends are converted.
class BinaryOutput {
 public:
  explicit BinaryOutput(std::FILE* stream);
  ~BinaryOutput();
  BinaryOutput(const BinaryOutput&) = delete;
  BinaryOutput& operator=(const BinaryOutput&) = delete;

 private:
  std::FILE* stream_;
};

/// Call it before any file is opened. A write to a closed pipe, or beyond the largest size of a
/// file, then fails like any other instead of ending the process. If a standard stream is closed,
/// no file that is opened later gets its number.
void PrepareForWriting();

/// While it exists, Ctrl-C does not end the process. One at a time.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// Ctrl-C was pressed, or the process was asked to end.
  static bool HasCome();
};

/// Limits OpenBLAS to the caller's thread. Its threads wait for each other by spinning: on a busy
/// machine a lens takes many times as long, and on an idle one they gain nothing. Setting
/// OPENBLAS_NUM_THREADS here would be too late: OpenBLAS reads it when it is loaded.
void HoldBlasToOneThread();

}  // namespace trackedcam::app
