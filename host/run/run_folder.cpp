#include "host/run/run_folder.h"

#include <algorithm>
#include <limits>
#include <string>
#include <system_error>

#include "host/input/input_error.h"
#include "host/text/file_text.h"
#include "host/text/number_text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDigits = 3;

// 0 for what is no numbered folder, and for the last number, which none could follow.
int NumberOf(const std::string& name, const std::string& prefix) {
  if (name.compare(0, prefix.size(), prefix) != 0) {
    return 0;
  }
  const int number = ParseInteger(std::string_view(name).substr(prefix.size())).value_or(0);
  return number == std::numeric_limits<int>::max() ? 0 : number;
}

int LastNumber(const fs::path& logFolder, const std::string& prefix) {
  int last = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(logFolder)) {
    last = std::max(last, NumberOf(entry.path().filename().u8string(), prefix));
  }
  return last;
}

fs::path CreateNext(const fs::path& logFolder, const std::string& prefix) {
  fs::create_directories(logFolder);
  for (int next = LastNumber(logFolder, prefix) + 1;; ++next) {
    std::string number = std::to_string(next);
    number.insert(0, kDigits - std::min(kDigits, number.size()), '0');
    fs::path folder = logFolder / (prefix + number);
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

fs::path CreateNumberedFolder(const fs::path& logFolder, const std::string& word) {
  try {
    fs::path folder = CreateNext(logFolder, word + '_');
    RequireWritable(folder);
    return folder;
  } catch (const std::exception& error) {
    throw InputError("cannot write below the log folder " + logFolder.u8string() +
                     ", and without a log there is no record of a run: " + error.what());
  }
}

fs::path CreateRunFolder(const fs::path& logFolder) {
  return CreateNumberedFolder(logFolder, "run");
}

}  // namespace trackedcam::host
