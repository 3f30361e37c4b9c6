// Everything of the tests that differs between operating systems.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::test {

/// Whether strtod is that of the GNU C library.
extern const bool kHasGnuStrtod;

/// The end of a line in a text file.
extern const char* const kLineEnd;

/// Whether a line that is appended to a file stays whole and in place beside those of other
/// threads.
extern const bool kAppendsWholeLines;

/// Runs a program in a folder and waits for its end. What it writes to standard output and standard
/// error goes into the two files. The arguments are UTF-8.
/// @return Its exit status; -1 when it did not start or crashed.
int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const std::filesystem::path& outFile,
               const std::filesystem::path& errorFile);

/// Lets the linear algebra of this process use so many threads, where it can.
void SetBlasThreads(int threads);

/// How many threads it uses; 1 where it has none of its own.
int BlasThreads();

/// A pipe with a name among files, which whoever opens it to read waits for.
/// @return False where the system has none.
bool MakePipe(const std::filesystem::path& path);

}  // namespace trackedcam::test
