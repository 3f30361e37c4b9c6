#pragma once

#include <filesystem>

namespace trackedcam::test {

/// During its lifetime the folder is the working folder of the process.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& folder) {
    std::filesystem::current_path(folder);
  }
  ~WorkingFolder() { std::filesystem::current_path(before_); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace trackedcam::test
