// A clean folder and a run log of its own for each test of a stage.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/run_log.h"

namespace trackedcam::test {

/// A new, empty folder that goes with its object. Its name is not ASCII, as folders of hosts are.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  /// The UTF-8 text of the path of a file in the folder.
  std::string File(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

void WriteFile(const std::string& path, const std::string& content);
std::string ReadFile(const std::string& path);

/// With a line feed for each line end, whatever the system writes.
std::string ReadText(const std::string& path);

class StageTest : public testing::Test {
 protected:
  StageTest();

  /// The messages logged so far, without time stamps.
  std::vector<std::string> LogLines() const;

  /// What the work writes to standard output.
  template <class Work>
  static std::string ConsoleOf(Work work) {
    testing::internal::CaptureStdout();
    work();
    return testing::internal::GetCapturedStdout();
  }

  TemporaryFolder folder;
  RunLog log;
};

}  // namespace trackedcam::test
