#include "app/options/shoot_folder.h"

#include <set>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "host/result/own_files.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

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
