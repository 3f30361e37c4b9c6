#include "host/input/missing_photographs.h"

#include <system_error>
#include <vector>

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr int kLevelsUp = 3;
constexpr std::size_t kMostSubfolders = 100;

std::vector<fs::path> FoldersAround(const Inputs& inputs) {
  std::vector<fs::path> folders;
  for (fs::path folder : {inputs.data.parent_path(), inputs.workingFolder}) {
    for (int level = 0; level <= kLevelsUp && !folder.empty(); ++level) {
      folders.push_back(folder);
      folder = folder.parent_path();
    }
  }
  std::error_code error;
  fs::directory_iterator entry(inputs.data.parent_path(), error);
  for (std::size_t i = 0; !error && entry != fs::directory_iterator() && i < kMostSubfolders; ++i) {
    if (entry->is_directory(error)) {
      folders.push_back(entry->path());
    }
    entry.increment(error);
  }
  return folders;
}

// Rows of another system have its slashes.
std::string FileName(const std::string& photograph) {
  return photograph.substr(photograph.find_last_of("/\\") + 1);
}

// Empty where there is none.
fs::path FolderWith(const std::string& name, const std::vector<fs::path>& folders) {
  for (const fs::path& folder : folders) {
    std::error_code error;
    if (!name.empty() && fs::is_regular_file(folder / fs::u8path(name), error)) {
      return folder;
    }
  }
  return {};
}

}  // namespace

std::string AdviceOnMissing(const std::string& photograph, const Inputs& inputs) {
  const std::vector<fs::path> folders = FoldersAround(inputs);
  if (fs::u8path(photograph).is_relative()) {
    const fs::path begin = FolderWith(photograph, folders);
    if (!begin.empty()) {
      return "Say --working-folder " + begin.u8string() + ": " + photograph + " is there.";
    }
  }
  const std::string name = FileName(photograph);
  const fs::path folder = FolderWith(name, folders);
  if (!folder.empty()) {
    return name + " lies in " + folder.u8string() +
           ": correct the paths in the second field, or leave the names only and say "
           "--working-folder.";
  }
  return "Put the photographs where the data file says, or correct its second field.";
}

}  // namespace trackedcam::host
