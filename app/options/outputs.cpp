#include "app/options/outputs.h"

#include <cstdio>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <CLI/CLI.hpp>

#include "app/platform.h"
#include "app/terminal/output.h"
#include "host/result/result_file.h"
#include "host/text/files.h"

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

// By other names and through links too, and before either file exists.
bool IsSameFile(const fs::path& a, const fs::path& b) {
  return a == b || AreEquivalent(a, b) ||
         (a.filename() == b.filename() && AreEquivalent(FolderOf(a), FolderOf(b)));
}

[[noreturn]] void RejectFolder(const fs::path& folder, const std::string& reason) {
  throw CLI::ValidationError("FOLDER", folder.u8string() + ' ' + reason +
                                           "; name another folder, or write into it with --force");
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

/// What simulate writes into a folder.
struct Simulated {
  const char* what;
  const char* file;  // begins with this text
  std::string_view begin;
  bool (*isPart)(const fs::path& path);
  const char* pictures;  // a subfolder
  bool (*isPicture)(const fs::path& path);
};

bool IsSimulated(const fs::path& folder, const Simulated& kind) {
  return host::BeginningOf(folder / kind.file, kind.begin.size()) == kind.begin &&
         host::IsTruthFile(folder / "truth.json");
}

constexpr const char* kPartOfSimulate = ".simulated.part";  // left if simulate is stopped

// Written by simulate or calibrate. A link is not: its target is elsewhere.
bool IsPartOfShoot(const fs::path& path) {
  static const std::set<std::string> kNames = {
      "photos", "tracker_data.csv", "truth.json",   "shoot.toml",
      "log",    kPartOfSimulate,    "simulated.txt"};
  const std::string name = path.filename().u8string();
  return !fs::is_symlink(path) &&
         (kNames.count(name) > 0 || IsNumbered(name, "run_", "") || host::IsResultFile(path) ||
          host::IsReportPage(path) || host::IsLensFile(path));
}

bool IsPhotographOfShoot(const fs::path& path) {
  const std::string name = path.filename().u8string();
  return !fs::is_symlink(path) && (IsNumbered(name, "img_", ".jpg") || name == kPartOfSimulate);
}

bool IsPartOfRecording(const fs::path& path) {
  static const std::set<std::string> kNames = {"frames",     "camera_poses.txt", "chart_poses.txt",
                                               "truth.json", kPartOfSimulate,    "simulated.txt"};
  return !fs::is_symlink(path) && kNames.count(path.filename().u8string()) > 0;
}

bool IsFrameOfRecording(const fs::path& path) {
  const std::string name = path.filename().u8string();
  return !fs::is_symlink(path) &&
         (IsNumbered(name, "", ".jpg") || name == "times.csv" || name == kPartOfSimulate);
}

constexpr Simulated kShoot = {"a simulated shoot", "shoot.toml", "# A simulated shoot.",
                              IsPartOfShoot,       "photos",     IsPhotographOfShoot};
constexpr Simulated kRecording = {
    "a simulated recording", "camera_poses.txt", "# A simulated recording:",
    IsPartOfRecording,       "frames",           IsFrameOfRecording};

void RequireAll(const fs::path& folder, const Simulated& kind,
                bool (*isPart)(const fs::path& path)) {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (!isPart(entry.path())) {
      RejectFolder(folder, "has " + entry.path().filename().u8string() + ", which is not part of " +
                               kind.what);
    }
  }
}

void RequireSimulated(const fs::path& folder, const Simulated& kind) {
  if (!fs::exists(fs::symlink_status(folder))) {
    return;
  }
  if (!fs::is_directory(folder)) {
    throw CLI::ValidationError("FOLDER", folder.u8string() + " is not a folder");
  }
  if (fs::is_empty(folder)) {
    return;
  }
  if (!IsSimulated(folder, kind)) {
    RejectFolder(folder, std::string("has files that are not ") + kind.what);
  }
  RequireAll(folder, kind, kind.isPart);
  if (fs::is_directory(folder / kind.pictures)) {
    RequireAll(folder / kind.pictures, kind, kind.isPicture);
  }
}

}  // namespace

bool IsStandardOutput(const fs::path& file) {
  return file == "-";
}

void WriteOutput(const fs::path& file, const std::string& content) {
  if (!IsStandardOutput(file)) {
    host::WriteFile(file, content);
    return;
  }
  std::cout.flush();
  const BinaryOutput binary(stdout);
  std::ostream plain(PlainOutput(std::cout));
  plain.write(content.data(), static_cast<std::streamsize>(content.size())).flush();
  if (!plain) {
    throw std::runtime_error("cannot write to standard output");
  }
}

std::ostream& TextBeside(const fs::path& file) {
  return IsStandardOutput(file) ? std::cerr : std::cout;
}

void PrepareOutputFile(const OutputFile& output, const std::vector<fs::path>& inputs) {
  const fs::path& file = output.file;
  for (const fs::path& input : inputs) {
    if (!input.empty() && IsSameFile(file, input)) {
      Reject(output, "would be overwritten, but it is an input: name another file");
    }
  }
  if (IsStandardOutput(file)) {
    return;
  }
  try {
    host::OutputTarget(file);
  } catch (const std::exception& refusal) {
    throw CLI::ValidationError(output.option, refusal.what());
  }
  std::error_code error;
  if (fs::is_regular_file(file, error) && fs::file_size(file, error) != 0 &&
      !output.isOfKind(file)) {
    Reject(output, std::string("exists and is not ") + output.kind +
                       ": name another file, or delete it first");
  }
  PrepareOutputFolder(output.option, file.parent_path());
}

void PrepareOutputFolder(const std::string& option, const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw CLI::ValidationError(
        option, "cannot create the folder " + folder.u8string() + ": " + error.message());
  }
}

void RequireShootFolder(const fs::path& folder) {
  RequireSimulated(folder, kShoot);
}

void RequireRecordingFolder(const fs::path& folder) {
  RequireSimulated(folder, kRecording);
}

}  // namespace trackedcam::app
