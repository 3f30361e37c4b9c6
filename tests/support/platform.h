// The parts of the tests that differ between operating systems.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::test {

/// Whether strtod is the one of the GNU C library.
extern const bool kHasGnuStrtod;

/// The end of a line in a text file.
extern const char* const kLineEnd;

/// Whether a line that one thread appends to a file stays whole if other threads append as well.
extern const bool kAppendsWholeLines;

/// Whether a path is any bytes, UTF-8 or not.
extern const bool kPathsAreBytes;

/// Runs a program in a folder, with standard output and standard error redirected to two files, and
/// waits for its end. The arguments are UTF-8.
/// @return Its exit status, or -1 if it did not start or crashed.
int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const std::filesystem::path& outFile,
               const std::filesystem::path& errorFile);

/// Sets the number of threads of this process's linear algebra, if it has threads.
void SetBlasThreads(int threads);

/// The number of threads of the linear algebra; 1 if it has no threads.
int BlasThreads();

/// Creates a named pipe, which blocks a program that opens it for reading.
/// @return False if the system has no named pipes.
bool MakePipe(const std::filesystem::path& path);

/// Paths of devices and of other files that belong to the system.
std::vector<std::filesystem::path> SystemFiles();

}  // namespace trackedcam::test
