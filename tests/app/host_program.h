// The built program, run as a process of its own.

#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/stage_test.h"

namespace trackedcam::app {

struct ProgramRun {
  int status;
  std::string out;
  std::string error;
};

inline std::string Quoted(const std::string& argument) {
  return '\'' + argument + '\'';
}

/// Runs the program in a folder, which also gets what it writes to its two streams.
inline ProgramRun RunHostProgram(const std::filesystem::path& folder,
                                 const std::vector<std::string>& arguments) {
  const std::string out = (folder / "standard_output").u8string();
  const std::string error = (folder / "standard_error").u8string();
  std::string command =
      "cd " + Quoted(folder.u8string()) + " && " + Quoted(TRACKEDCAM_HOST_PROGRAM);
  for (const std::string& argument : arguments) {
    command += ' ' + Quoted(argument);
  }
  command += " >" + Quoted(out) + " 2>" + Quoted(error);
  const int result = std::system(command.c_str());
  return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, test::ReadFile(out), test::ReadFile(error)};
}

}  // namespace trackedcam::app
