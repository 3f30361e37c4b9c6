// A path option: stored as an absolute path without "." and "..".

#pragma once

#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// @param form How the value is written, for the help: FILE or FOLDER, which tells paths from other
///             values.
inline CLI::Option* AddPath(CLI::App& command, const std::string& name, std::filesystem::path& path,
                            const std::string& form, const std::string& description) {
  const auto store = [&path](const std::string& text) {
    path = std::filesystem::absolute(std::filesystem::u8path(text)).lexically_normal();
  };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

inline bool IsPath(const CLI::Option& option) {
  const std::string form = option.get_type_name();
  return form.rfind("FILE", 0) == 0 || form.rfind("FOLDER", 0) == 0;
}

}  // namespace trackedcam::app
