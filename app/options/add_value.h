#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds an option whose value is read by one of the functions of option_values.h.
/// @param form How the value is written, for the help.
template <class Value, class Parsed>
CLI::Option* AddValue(CLI::App& command, const std::string& name, Value& value,
                      Parsed (*parse)(const std::string& option, const std::string& text),
                      const std::string& form, const std::string& description) {
  const auto store = [name, &value, parse](const std::string& text) { value = parse(name, text); };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

}  // namespace trackedcam::app
