// The configuration file: options as "name = value" below a section with the command's name.

#pragma once

#include <istream>
#include <vector>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds --config to the program and to all of its commands.
void AddConfigFile(CLI::App& program);

/// Reads a configuration file so that a shoot's folder can be moved with the file in it.
class ConfigFile : public CLI::ConfigTOML {
 public:
  /// The program's own --config tells which folder the file's paths are relative to.
  explicit ConfigFile(const CLI::App& program);

  std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

 private:
  const CLI::App& program_;
};

}  // namespace trackedcam::app
