// The rows of a shoot, wherever they are.

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
  /// Without rows, to be added.
  Shoot() = default;
  /// Of a data file.
  explicit Shoot(std::filesystem::path dataFile) : dataFile_(std::move(dataFile)) {}

  /// @throws Refusal for the shoot of a data file.
  void Add(host::RecordedRow row);

  /// The data file; one that is written below the log folder where the rows are in memory.
  std::filesystem::path DataFile(const std::filesystem::path& logFolder) const;

  /// Where relative paths of photographs begin unless the host says otherwise.
  std::filesystem::path WorkingFolder() const;

 private:
  const std::filesystem::path dataFile_;  // empty: the rows are in memory
  mutable std::mutex mutex_;
  std::vector<host::RecordedRow> rows_;
};

Handles<trackedcam_shoot, Shoot>& Shoots();

/// @throws Refusal for settings that trackedcam_settings_init did not fill, and for numbers that
///         stand for nothing.
void RequireSettings(const trackedcam_settings* settings);

/// As the settings state it; nothing where they do not.
std::optional<host::Mounting> MountingOf(const trackedcam_settings& settings);

/// All paths absolute. The data file of a shoot in memory is written.
/// @throws Refusal, host::InputError
host::Inputs InputsOf(const Shoot& shoot, const trackedcam_settings& settings);

}  // namespace trackedcam::c
