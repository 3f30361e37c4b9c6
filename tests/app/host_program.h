// The built program and others, each run as a process of its own.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam::app {

struct ProgramRun {
  int status;
  std::string out;
  std::string error;
};

/// Runs the program in a folder, which also gets what it writes to its two streams.
inline ProgramRun RunHostProgram(const std::filesystem::path& folder,
                                 const std::vector<std::string>& arguments) {
  const std::filesystem::path out = folder / "standard_output";
  const std::filesystem::path error = folder / "standard_error";
  const int status = test::RunProgram(std::filesystem::absolute(TRACKEDCAM_HOST_PROGRAM), arguments,
                                      folder, out, error);
  return {status, test::ReadText(out.u8string()), test::ReadText(error.u8string())};
}

/// Runs a tool that is installed on this machine in a folder, and returns its exit status.
inline int RunTool(const std::filesystem::path& folder, const std::string& tool,
                   const std::vector<std::string>& arguments) {
  return test::RunProgram(tool, arguments, folder, folder / "tool_output", folder / "tool_error");
}

}  // namespace trackedcam::app
