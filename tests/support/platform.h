// Everything of the tests that differs between operating systems.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::test {

/// The end of a line in a text file.
extern const char* const kLineEnd;

/// Runs a program in a folder and waits for its end. What it writes to standard output and standard
/// error goes into the two files. The arguments are UTF-8.
/// @return Its exit status; -1 when it did not start or crashed.
int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const std::filesystem::path& outFile,
               const std::filesystem::path& errorFile);

/// A pipe with a name among files, which whoever opens it to read waits for.
/// @return False where the system has none.
bool MakePipe(const std::filesystem::path& path);

}  // namespace trackedcam::test
