#pragma once

#include <filesystem>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "host/run/run_log_reader.h"

namespace trackedcam::host {

/// Reads the log that the library writes into a folder of its own, while it writes it. The library
/// names the log itself, after the second in which it begins.
class LogFollower {
 public:
  /// @param listener Called on a thread of the follower, until Stop.
  LogFollower(std::filesystem::path folder, std::vector<std::string> photographs,
              ProgressListener listener);
  ~LogFollower();
  LogFollower(const LogFollower&) = delete;
  LogFollower& operator=(const LogFollower&) = delete;

  /// Reads what is left. To be called once, when the library has returned.
  RunRecord Stop();

  /// Empty when the library could not write one.
  const std::filesystem::path& Log() const { return log_; }

 private:
  void ReadMore();

  std::filesystem::path folder_;
  std::filesystem::path log_;
  std::streamoff position_ = 0;
  RunLogReader reader_;
  std::promise<void> stop_;
  std::thread thread_;
};

/// The log in a folder; an empty path when there is none.
std::filesystem::path FindLog(const std::filesystem::path& folder);

}  // namespace trackedcam::host
