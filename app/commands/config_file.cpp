#include "app/commands/config_file.h"

#include <algorithm>
#include <string>

#include "app/commands/toml_file.h"
#include "app/options/option_values.h"
#include "host/input/inputs.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Reject(const std::string& reason) {
  throw CLI::ValidationError("--config", reason);
}

std::vector<TomlSection> Read(const fs::path& path) {
  try {
    return ReadTomlFile(path);
  } catch (const host::InputError& error) {
    Reject(error.what());
  }
}

// A path in double quotes, such as "D:\takes", has a tab in place of \t.
std::string PathText(const std::string& text, const std::string& name, const fs::path& folder) {
  if (host::HasControlCharacter(text)) {
    Reject(name + " has a control character; " + kPathsInToml);
  }
  return (folder / fs::u8path(text)).u8string();
}

std::string PathsText(const CLI::Option& option, const TomlOption& given, const std::string& name,
                      const fs::path& folder) {
  if (option.get_multi_option_policy() != CLI::MultiOptionPolicy::Join) {
    return PathText(given.value, name, folder);
  }
  std::string paths;
  for (const std::string& path : given.elements) {
    paths += (paths.empty() ? "" : std::string(1, kBetweenPaths)) + PathText(path, name, folder);
  }
  return paths;
}

CLI::App* FindCommand(CLI::App& program, const std::string& name) {
  const auto commands =
      program.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return commands.empty() ? nullptr : commands.front();
}

void SetDefault(CLI::Option& option, const std::string& text) {
  option.required(false)->run_callback_for_default()->default_val(text);
}

// crosscheck has the same defaults: it has no section of its own in the file of a shoot.
void SetSameDefault(CLI::App& program, const std::string& name, const std::string& text) {
  if (CLI::App* crosscheck = FindCommand(program, "crosscheck")) {
    if (CLI::Option* option = crosscheck->get_option_no_throw(name)) {
      SetDefault(*option, text);
    }
  }
}

// An unknown section or option is an error: it may be a typing error.
void SetDefaults(CLI::App& program, const fs::path& path) {
  const fs::path folder = fs::absolute(path).parent_path();
  for (const TomlSection& section : Read(path)) {
    CLI::App* command = FindCommand(program, section.name);
    if (command == nullptr) {
      Reject("there is no section " + section.name + " (" + section.place +
             "); sections have the names of commands, such as [calibrate]");
    }
    for (const TomlOption& given : section.options) {
      const std::string name = section.name + '.' + given.name;
      CLI::Option* option = command->get_option_no_throw("--" + given.name);
      if (option == nullptr) {
        Reject("there is no option " + name + " (" + given.place + ")");
      }
      const bool isPath = IsPath(*option) && given.value != "-";  // standard output
      const std::string text = isPath ? PathsText(*option, given, name, folder) : given.value;
      SetDefault(*option, text);
      if (section.name == "calibrate") {
        SetSameDefault(program, option->get_name(), text);
      }
    }
  }
}

}  // namespace

void AddConfigFile(CLI::App& program) {
  program
      .add_option_function<std::string>(
          "--config",
          [&program](const std::string& path) { SetDefaults(program, fs::u8path(path)); },
          "Configuration file with options (TOML)")
      ->check(RequireFile)
      ->trigger_on_parse()  // before missing options are reported
      ->type_name("FILE");
}

fs::path ConfigFile(const CLI::App& program) {
  const CLI::Option* option = program.get_option("--config");
  return option->results().empty() ? fs::path()
                                   : fs::absolute(fs::u8path(option->results().front()));
}

}  // namespace trackedcam::app
