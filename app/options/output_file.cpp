#include "app/options/output_file.h"

#include <CLI/CLI.hpp>

#include "app/options/create_folder.h"

namespace trackedcam::app {

void PrepareOutputFile(const std::string& option, const std::filesystem::path& file) {
  if (std::filesystem::is_directory(file)) {
    throw CLI::ValidationError(option, file.u8string() + " is a folder, not a file");
  }
  if (std::filesystem::exists(file) && !std::filesystem::is_regular_file(file)) {
    throw CLI::ValidationError(option, file.u8string() + " is no plain file");
  }
  CreateFolder(option, file.parent_path());
}

}  // namespace trackedcam::app
