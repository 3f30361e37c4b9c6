// A shoot: a data file, or rows in memory.

#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "c/handles.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"

namespace trackedcam::c {

class Shoot {
 public:
  /// Without rows.
  Shoot() = default;
  /// Of a data file.
  explicit Shoot(std::filesystem::path dataFile) : dataFile_(std::move(dataFile)) {}

  /// @throws Refusal if the shoot is a data file, host::InputError for a pose that cannot be.
  void Add(host::RecordedRow row);

  /// @throws Refusal if the rows are in memory.
  void Continue(std::filesystem::path dataFile);
  std::vector<std::filesystem::path> MoreData() const;

  /// The data file. Rows in memory are written to one below the log folder.
  std::filesystem::path DataFile(const std::filesystem::path& logFolder) const;

  /// Writes the rows in memory to a data file.
  /// @throws Refusal if the shoot is a data file, host::InputError if it has no rows.
  void Save(const std::filesystem::path& file) const;

  /// Folder of relative paths of photographs, unless the host sets another.
  std::filesystem::path WorkingFolder() const;

 private:
  const std::filesystem::path dataFile_;  // empty: the rows are in memory
  mutable std::mutex mutex_;
  std::vector<host::RecordedRow> rows_;
  std::vector<std::filesystem::path> moreData_;  // that continue the data file
};

Handles<trackedcam_shoot, Shoot>& Shoots();

/// @throws Refusal for settings that trackedcam_settings_init did not fill, and for numbers that
/// are
///         not one of those listed.
void RequireSettings(const trackedcam_settings* settings);

/// Nothing if the settings state none.
std::optional<host::Mounting> MountingOf(const trackedcam_settings& settings);

host::Accuracy GoodEnoughOf(const trackedcam_settings& settings);
double ScaleUncertaintyOf(const trackedcam_settings& settings);
std::vector<std::string> ExcludeOf(const trackedcam_settings& settings);
std::vector<double> AtMetresOf(const double* at, std::int32_t count);

/// All paths are absolute. Rows in memory are written to a data file.
/// @throws Refusal, host::InputError
host::Inputs InputsOf(const Shoot& shoot, const trackedcam_settings& settings);

}  // namespace trackedcam::c
