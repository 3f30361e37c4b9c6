#include "support/stage_test.h"

#include <fstream>
#include <random>
#include <sstream>

#include "core/utf8.h"
#include "support/log_lines.h"

namespace trackedcam::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path_ =
        fs::temp_directory_path() / fs::u8path("trackedcam_tést_撮影_" + std::to_string(random()));
  } while (!fs::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::File(const std::string& name) const {
  return (path_ / fs::u8path(name)).u8string();
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream file(fs::u8path(path), std::ios::binary);
  file << content;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

namespace {

std::string ReadAll(const std::string& path, std::ios::openmode mode) {
  std::ifstream file(fs::u8path(path), mode);
  if (!file) {
    throw std::runtime_error("cannot read " + path);
  }
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

}  // namespace

std::string ReadFile(const std::string& path) {
  return ReadAll(path, std::ios::in | std::ios::binary);
}

std::string ReadText(const std::string& path) {
  return ReadAll(path, std::ios::in);
}

StageTest::StageTest() {
  OpenRunLog(log, folder.Path().u8string());
}

std::vector<std::string> StageTest::LogLines() const {
  return ReadLogLines(Utf8FromWide(log.path));
}

}  // namespace trackedcam::test
