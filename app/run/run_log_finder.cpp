#include "app/run/run_log_finder.h"

#include <string>
#include <utility>

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

bool IsLogName(const std::string& name) {
  const std::string begin = "log_";
  const std::string end = ".txt";
  return name.size() >= begin.size() + end.size() && name.compare(0, begin.size(), begin) == 0 &&
         name.compare(name.size() - end.size(), end.size(), end) == 0;
}

// The names hold the time, so that their order is that of the runs.
std::map<fs::path, std::uintmax_t> LogSizes(const fs::path& folder) {
  std::map<fs::path, std::uintmax_t> sizes;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file() && IsLogName(entry.path().filename().u8string())) {
      sizes[entry.path()] = entry.file_size();
    }
  }
  return sizes;
}

}  // namespace

RunLogFinder::RunLogFinder(fs::path logFolder)
    : logFolder_(std::move(logFolder)), sizesBefore_(LogSizes(logFolder_)) {}

fs::path RunLogFinder::Find() const {
  fs::path newest;
  for (const auto& [log, size] : LogSizes(logFolder_)) {
    const auto before = sizesBefore_.find(log);
    if (before == sizesBefore_.end() || size > before->second) {
      newest = log;
    }
  }
  return newest;
}

}  // namespace trackedcam::app
