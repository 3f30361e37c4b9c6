// A path option: stored as an absolute path without "." and "..".

#pragma once

#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

inline CLI::Option* AddPath(CLI::App& command, const std::string& name, std::filesystem::path& path,
                            const std::string& form, const std::string& description) {
  const auto store = [&path](const std::string& text) {
    path = std::filesystem::absolute(std::filesystem::u8path(text)).lexically_normal();
  };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

}  // namespace trackedcam::app
