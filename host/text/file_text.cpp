#include "host/text/file_text.h"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace trackedcam::host {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), {}};
  if (!stream || fs::is_directory(file)) {
    throw std::runtime_error("cannot read " + file.u8string());
  }
  return content;
}

void WriteFile(const fs::path& file, const std::string& content) {
  fs::path beside = file;
  beside += ".part";
  std::ofstream stream(beside, std::ios::binary);  // so that line ends stay as they are
  stream << content;
  stream.close();
  std::error_code error;
  if (stream) {
    fs::rename(beside, file, error);
  }
  if (!stream || error) {
    std::error_code ignored;
    fs::remove(beside, ignored);
    throw std::runtime_error("cannot write " + file.u8string());
  }
}

}  // namespace trackedcam::host
