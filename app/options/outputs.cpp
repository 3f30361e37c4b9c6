#include "app/options/outputs.h"

#include <set>
#include <string>
#include <string_view>
#include <system_error>

#include <CLI/CLI.hpp>

#include "host/result/result_file.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

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

constexpr const char* kForce =
    "; name another folder, or say --force to write the shoot all the same";

[[noreturn]] void Reject(const fs::path& folder, const std::string& reason) {
  throw CLI::ValidationError("FOLDER", folder.u8string() + ' ' + reason + kForce);
}

bool IsNumbered(std::string_view name, std::string_view before, std::string_view after) {
  if (name.size() <= before.size() + after.size() || name.substr(0, before.size()) != before ||
      name.substr(name.size() - after.size()) != after) {
    return false;
  }
  name.remove_prefix(before.size());
  name.remove_suffix(after.size());
  return name.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsSimulated(const fs::path& folder) {
  constexpr std::string_view kBegin = "# A simulated shoot.";
  return host::BeginningOf(folder / "shoot.toml", kBegin.size()) == kBegin &&
         host::IsTruthFile(folder / "truth.json");
}

// What simulating and calibrating leave there.
bool Belongs(const fs::path& path) {
  static const std::set<std::string> kNames = {"photos", "tracker_data.csv", "truth.json",
                                               "shoot.toml", "log"};
  const std::string name = path.filename().u8string();
  // A link leads to files of another place.
  return !fs::is_symlink(path) &&
         (kNames.count(name) > 0 || IsNumbered(name, "run_", "") || host::IsResultFile(path) ||
          host::IsReportPage(path) || host::IsLensFile(path));
}

void RequireAll(const fs::path& folder, bool (*belongs)(const fs::path& path)) {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (!belongs(entry.path())) {
      Reject(folder, "holds " + entry.path().filename().u8string() +
                         ", which is no part of a simulated shoot");
    }
  }
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

void RequireShootFolder(const fs::path& folder) {
  if (!fs::exists(fs::symlink_status(folder))) {
    return;
  }
  if (!fs::is_directory(folder)) {
    throw CLI::ValidationError("FOLDER", folder.u8string() + " is no folder");
  }
  if (fs::is_empty(folder)) {
    return;
  }
  if (!IsSimulated(folder)) {
    Reject(folder, "holds files that are no simulated shoot");
  }
  RequireAll(folder, Belongs);
  if (fs::is_directory(folder / "photos")) {
    RequireAll(folder / "photos", [](const fs::path& path) {
      return !fs::is_symlink(path) && IsNumbered(path.filename().u8string(), "img_", ".jpg");
    });
  }
}

}  // namespace trackedcam::app
