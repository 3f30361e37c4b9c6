#include "host/run/log_follower.h"

#include <array>
#include <chrono>
#include <fstream>
#include <system_error>
#include <utility>

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr auto kPause = std::chrono::milliseconds(40);

bool IsLogName(const std::string& name) {
  const std::string begin = "log_";
  const std::string end = ".txt";
  return name.size() >= begin.size() + end.size() && name.compare(0, begin.size(), begin) == 0 &&
         name.compare(name.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

fs::path FindLog(const fs::path& folder) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_regular_file(error) && IsLogName(entry.path().filename().u8string())) {
      return entry.path();
    }
  }
  return {};
}

LogFollower::LogFollower(fs::path folder, std::vector<std::string> photographs,
                         ProgressListener listener)
    : folder_(std::move(folder)),
      reader_(std::move(photographs), std::move(listener)),
      thread_([this, stopped = stop_.get_future()] {
        // What is thrown here, for want of memory or by the listener, must not end the process.
        // The run goes on, and its record is what was read so far.
        try {
          while (stopped.wait_for(kPause) == std::future_status::timeout) {
            ReadMore();
          }
        } catch (const std::exception&) {
        }
      }) {}

LogFollower::~LogFollower() {
  if (thread_.joinable()) {
    stop_.set_value();
    thread_.join();
  }
}

RunRecord LogFollower::Stop() {
  stop_.set_value();
  thread_.join();
  ReadMore();
  return reader_.Record();
}

void LogFollower::ReadMore() {
  if (log_.empty()) {
    log_ = FindLog(folder_);
  }
  std::ifstream log(log_, std::ios::binary);
  log.seekg(position_);
  std::array<char, 65536> piece = {};
  while (log) {
    log.read(piece.data(), piece.size());
    position_ += log.gcount();
    reader_.Consume({piece.data(), static_cast<std::size_t>(log.gcount())});
  }
}

}  // namespace trackedcam::host
