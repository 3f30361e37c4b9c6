#include "host/run/run_folder.h"

#include <algorithm>
#include <string>
#include <system_error>

#include "host/input/input_error.h"
#include "host/text/file_text.h"
#include "host/text/number_text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "run_";
constexpr std::size_t kDigits = 3;

int NumberOf(const std::string& name) {
  return name.compare(0, kPrefix.size(), kPrefix) == 0
             ? ParseInteger(std::string_view(name).substr(kPrefix.size())).value_or(0)
             : 0;
}

int LastRun(const fs::path& logFolder) {
  int last = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(logFolder)) {
    last = std::max(last, NumberOf(entry.path().filename().u8string()));
  }
  return last;
}

fs::path CreateNext(const fs::path& logFolder) {
  fs::create_directories(logFolder);
  for (int run = LastRun(logFolder) + 1;; ++run) {
    std::string number = std::to_string(run);
    number.insert(0, kDigits - std::min(kDigits, number.size()), '0');
    fs::path folder = logFolder / (std::string(kPrefix) + number);
    if (fs::create_directory(folder)) {  // false where another run was quicker
      return folder;
    }
  }
}

// A folder can be created on a disk that is full, or kept from being written in.
void RequireWritable(const fs::path& folder) {
  const fs::path trial = folder / "trial";
  WriteFile(trial, std::string(4096, ' '));
  fs::remove(trial);
}

}  // namespace

fs::path CreateRunFolder(const fs::path& logFolder) {
  try {
    fs::path folder = CreateNext(logFolder);
    RequireWritable(folder);
    return folder;
  } catch (const std::exception& error) {
    throw InputError("cannot write below the log folder " + logFolder.u8string() +
                     ", and without a log there is no record of a run: " + error.what());
  }
}

}  // namespace trackedcam::host
