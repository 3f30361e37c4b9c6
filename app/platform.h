// Everything of the program that differs between operating systems.

#pragma once

#include <cstdio>

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream);

/// A write to a closed pipe, or beyond the size that a file may have, fails as any other does
/// instead of ending the process, and a file that is opened never takes the place of a standard
/// stream that is closed. To be called before any file is opened.
void PrepareForWriting();

/// Linear algebra on the caller's thread alone, also where an OpenBLAS with threads is installed.
/// Its threads wait for each other by spinning, so that beside busy programs a lens takes many
/// times as long; alone they gain nothing. Setting OPENBLAS_NUM_THREADS is no way: it is read at
/// loading.
void HoldBlasToOneThread();

}  // namespace trackedcam::app
