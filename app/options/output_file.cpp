#include "app/options/output_file.h"

#include <fstream>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "app/options/create_folder.h"

namespace trackedcam::app {

void PrepareOutputFile(const std::string& option, const std::filesystem::path& file) {
  if (std::filesystem::is_directory(file)) {
    throw CLI::ValidationError(option, file.u8string() + " is a folder, not a file");
  }
  CreateFolder(option, file.parent_path());
}

void WriteOutputFile(const std::filesystem::path& file, const std::string& content) {
  std::ofstream stream(file, std::ios::binary);  // so that line ends stay as they are
  stream << content;
  stream.close();
  if (!stream) {
    throw std::runtime_error("cannot write " + file.u8string());
  }
}

}  // namespace trackedcam::app
