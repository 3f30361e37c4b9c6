#pragma once

#include <cstdint>
#include <filesystem>
#include <map>

namespace trackedcam::app {

/// Finds the log of a run: the library names it itself, after the second in which the run begins.
class RunLogFinder {
 public:
  /// Made before the run, to know which logs the folder has already.
  explicit RunLogFinder(std::filesystem::path logFolder);

  /// The newest log that is new or has grown since; an empty path when there is none.
  std::filesystem::path Find() const;

 private:
  std::filesystem::path logFolder_;
  std::map<std::filesystem::path, std::uintmax_t> sizesBefore_;
};

}  // namespace trackedcam::app
