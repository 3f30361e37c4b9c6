#include "app/options/output_file.h"

#include <system_error>

#include <CLI/CLI.hpp>

#include "app/options/create_folder.h"

namespace trackedcam::app {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Reject(const OutputFile& output, const std::string& reason) {
  throw CLI::ValidationError(output.option, output.file.u8string() + ' ' + reason);
}

bool AreEquivalent(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return fs::equivalent(a, b, error) && !error;
}

fs::path FolderOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

}  // namespace

bool IsSameFile(const fs::path& a, const fs::path& b) {
  return a == b || AreEquivalent(a, b) ||
         (a.filename() == b.filename() && AreEquivalent(FolderOf(a), FolderOf(b)));
}

void PrepareOutputFile(const OutputFile& output, const std::vector<fs::path>& inputs) {
  const fs::path& file = output.file;
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (fs::is_directory(status)) {
    Reject(output, "is a folder, not a file");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    Reject(output, "is no plain file");
  }
  for (const fs::path& input : inputs) {
    if (!input.empty() && IsSameFile(file, input)) {
      Reject(output, "would be overwritten: it is an input");
    }
  }
  if (fs::is_regular_file(status) && fs::file_size(file, error) != 0 && !output.isOwn(file)) {
    Reject(output, std::string("is not ") + output.kind +
                       ", and would be lost: name another file, or remove it first");
  }
  CreateFolder(output.option, file.parent_path());
}

}  // namespace trackedcam::app
