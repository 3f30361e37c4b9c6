#include "app/commands/config_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

// The parser checks itself by assertions that text can break, such as "[@". They would end the
// program, or let a compiler assume what is not so; here they refuse the text.
namespace {
[[noreturn]] void RefuseText() {
  throw std::invalid_argument("no TOML");
}
}  // namespace
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expr) ((expr) ? static_cast<void>(0) : RefuseText())
#define TOML_HEADER_ONLY 1  // every system has the headers
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include "app/commands/toml_characters.h"
#include "app/options/option_values.h"
#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBackslashes =
    "; in double quotes a backslash begins an escape: write a path in single quotes, as in "
    "'D:\\takes\\new', or with slashes";

[[noreturn]] void Reject(const std::string& reason) {
  throw CLI::ValidationError("--config", FromTomlCharacters(reason));
}

std::string PlaceOf(const toml::source_region& region) {
  return "line " + std::to_string(region.begin.line) + ", column " +
         std::to_string(region.begin.column);
}

toml::table Read(const fs::path& path) {
  constexpr std::uintmax_t kMostBytes = 1 << 20;
  std::error_code ignored;
  if (fs::file_size(path, ignored) > kMostBytes) {
    Reject(path.u8string() + " is too large for a configuration");
  }
  const std::string content = host::ReadFile(path);
  // The parser takes some of them for the end of the text, and stops the program where it has
  // checks of itself.
  const auto isNoText = [](char character) {
    return character >= 0 && character < ' ' && character != '\n' && character != '\r' &&
           character != '\t';
  };
  const auto found = std::find_if(content.begin(), content.end(), isNoText);
  if (found != content.end()) {
    Reject(path.u8string() + ", line " +
           std::to_string(1 + std::count(content.begin(), found, '\n')) +
           ": a control character, which no text file holds");
  }
  try {
    return toml::parse(ToTomlCharacters(content), path.u8string());
  } catch (const toml::parse_error& error) {
    const std::string reason(error.description());
    const bool isEscape = reason.find("escape") != std::string::npos;
    Reject(path.u8string() + ", " + PlaceOf(error.source()) + ": " + reason +
           (isEscape ? kBackslashes : ""));
  } catch (const std::invalid_argument&) {
    Reject(path.u8string() + ": a name is none; names are letters, digits, dashes and underscores");
  }
}

// The value as it stands on the command line: a list such as [12, -8, 5] is 12,-8,5.
std::string TextOf(const toml::node& value, const std::string& name) {
  if (const toml::array* list = value.as_array()) {
    std::string text;
    for (const toml::node& element : *list) {
      text += (text.empty() ? "" : ",") + TextOf(element, name);
    }
    return text;
  }
  if (const auto* text = value.as_string()) {
    return FromTomlCharacters(text->get());
  }
  if (const auto* number = value.as_integer()) {
    return std::to_string(number->get());
  }
  if (const auto* number = value.as_floating_point()) {
    return host::Shortest(number->get());
  }
  if (const auto* flag = value.as_boolean()) {
    return flag->get() ? "true" : "false";
  }
  Reject(name + " is no text, number, list or flag");
}

std::string PathText(const std::string& text, const std::string& name, const fs::path& folder) {
  const auto isControl = [](char character) { return character >= 0 && character < ' '; };
  if (std::any_of(text.begin(), text.end(), isControl)) {
    Reject(name + " holds a control character" + kBackslashes);
  }
  return (folder / fs::u8path(text)).u8string();
}

CLI::App* FindCommand(CLI::App& program, const std::string& name) {
  const auto commands =
      program.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return commands.empty() ? nullptr : commands.front();
}

void SetDefault(CLI::Option& option, const std::string& text) {
  option.required(false)->run_callback_for_default()->default_val(text);
}

// What crosscheck wants to know of a shoot stands where calibrate looks for it.
void SetSameDefault(CLI::App& program, const std::string& name, const std::string& text) {
  if (CLI::App* crosscheck = FindCommand(program, "crosscheck")) {
    if (CLI::Option* option = crosscheck->get_option_no_throw(name)) {
      SetDefault(*option, text);
    }
  }
}

// A section or name that no command knows is a slip of the pen, not to be passed over.
void SetDefaults(CLI::App& program, const fs::path& path) {
  const fs::path folder = fs::absolute(path).parent_path();
  for (const auto& [section, content] : Read(path)) {
    const std::string command(section.str());
    const toml::table* options = content.as_table();
    CLI::App* subcommand = FindCommand(program, command);
    if (options == nullptr || subcommand == nullptr) {
      Reject("there is no " + std::string(options == nullptr ? "option " : "section ") + command +
             " (" + PlaceOf(section.source()) +
             "); options stand below a section such as [calibrate]");
    }
    for (const auto& [key, value] : *options) {
      const std::string name = command + '.' + std::string(key.str());
      CLI::Option* option = subcommand->get_option_no_throw("--" + std::string(key.str()));
      if (option == nullptr) {
        Reject("there is no option " + name + " (" + PlaceOf(key.source()) + ")");
      }
      const std::string given = TextOf(value, name);
      const std::string text = IsPath(*option) ? PathText(given, name, folder) : given;
      SetDefault(*option, text);
      if (command == "calibrate") {
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
          "Read options from a configuration file (TOML)")
      ->check(RequireFile)
      ->trigger_on_parse()  // before it is asked which options are missing
      ->type_name("FILE");
}

fs::path ConfigFile(const CLI::App& program) {
  const CLI::Option* option = program.get_option("--config");
  return option->results().empty() ? fs::path()
                                   : fs::absolute(fs::u8path(option->results().front()));
}

}  // namespace trackedcam::app
