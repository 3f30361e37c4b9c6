// A configuration file as text: what its sections say. It knows none of the options.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::app {

/// Advice for a path with backslashes.
constexpr const char* kPathsInToml =
    "in double quotes a backslash begins an escape: write a path in single quotes, as in "
    "'D:\\takes\\new', or with slashes";

struct TomlOption {
  std::string name;
  std::string value;                  // as on the command line: the list [12, -8, 5] is 12,-8,5
  std::vector<std::string> elements;  // of a list; otherwise the value alone
  std::string place;                  // "line 3, column 1"
};

struct TomlSection {
  std::string name;
  std::string place;
  std::vector<TomlOption> options;
};

/// @throws host::InputError if the file is not TOML, or if an option is not in a section or has a
///         value of another type, such as a date. The message names file, line and column.
std::vector<TomlSection> ReadTomlFile(const std::filesystem::path& file);

}  // namespace trackedcam::app
