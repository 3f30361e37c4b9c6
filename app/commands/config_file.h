// The configuration file: options as "name = value" below a section with the command's name.

#pragma once

#include <filesystem>
#include <istream>
#include <vector>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds --config to the program and to all of its commands.
void AddConfigFile(CLI::App& program);

/// Reads a configuration file so that a shoot's folder can be moved with the file in it.
class ConfigFile : public CLI::ConfigTOML {
 public:
  explicit ConfigFile(const CLI::App& program);

  /// The file's own paths are relative to its folder.
  void SetPath(const std::filesystem::path& path);

  /// Reads the file by its path. The stream is of no use: the base class opens narrow paths only
  /// and is therefore given any file.
  std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

 private:
  const CLI::App& program_;
  std::filesystem::path path_;
};

}  // namespace trackedcam::app
