// A base class for tests of a stage, with an empty folder and a run log for each test.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/run_log.h"

namespace trackedcam::test {

/// Creates an empty folder, and removes it at the end. Its name is not ASCII, as on some hosts.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  /// The path of a file in the folder, UTF-8.
  std::string File(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

void WriteFile(const std::string& path, const std::string& content);
std::string ReadFile(const std::string& path);

/// The content with a line feed for each line end, on every system.
std::string ReadText(const std::string& path);

class StageTest : public testing::Test {
 protected:
  StageTest();

  /// The messages logged so far, without time stamps.
  std::vector<std::string> LogLines() const;

  /// The text that the work writes to standard output.
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
