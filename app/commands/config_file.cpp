#include "app/commands/config_file.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "app/commands/calibrate_options.h"
#include "app/options/option_values.h"
#include "app/platform.h"

namespace trackedcam::app {
namespace {

// A section does not call its command: only the command line does.
bool IsSectionMark(const CLI::ConfigItem& item) {
  return item.name == "++" || item.name == "--";
}

bool IsPath(const std::string& option) {
  return std::find(kPathOptions.begin(), kPathOptions.end(), option) != kPathOptions.end();
}

// The base class would cut a quoted path at a '#' as well.
std::string RemoveComment(const std::string& line) {
  char quote = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (quote != 0) {
      quote = line[i] == quote ? 0 : quote;
    } else if (line[i] == '"' || line[i] == '\'') {
      quote = line[i];
    } else if (line[i] == '#') {
      return line.substr(0, i);
    }
  }
  return line;
}

std::string RemoveComments(std::istream& input) {
  std::string text;
  for (std::string line; std::getline(input, line);) {
    text += RemoveComment(line) + '\n';
  }
  return text;
}

// A name that the section's command does not know is a slip of the pen, not to be passed over.
void RequireKnown(const CLI::App& program, const CLI::ConfigItem& item) {
  const auto isSection = [&](const CLI::App* command) {
    return item.parents == std::vector<std::string>{command->get_name()};
  };
  const auto commands = program.get_subcommands(isSection);
  if (commands.empty() || commands.front()->get_option_no_throw("--" + item.name) == nullptr) {
    throw CLI::ValidationError("--config", "there is no option " + item.fullname() +
                                               "; options stand below a section such as "
                                               "[calibrate]");
  }
}

}  // namespace

void AddConfigFile(CLI::App& program) {
  const auto configFile = std::make_shared<ConfigFile>(program);
  program.set_config("--config", "", "Read options from a configuration file (TOML)")
      ->type_name("FILE")
      ->transform([configFile](const std::string& path) {
        if (const std::string problem = RequireFile(path); !problem.empty()) {
          throw CLI::ValidationError(problem);
        }
        configFile->SetPath(std::filesystem::u8path(path));
        return AnyReadableFile();
      });
  program.config_formatter(configFile);
}

ConfigFile::ConfigFile(const CLI::App& program) : program_(program) {
  comment('\0');  // none is left when the base class reads
}

void ConfigFile::SetPath(const std::filesystem::path& path) {
  path_ = path;
}

std::vector<CLI::ConfigItem> ConfigFile::from_config(std::istream& /*input*/) const {
  const std::filesystem::path folder = std::filesystem::absolute(path_).parent_path();

  std::ifstream file(path_);
  std::istringstream text(RemoveComments(file));
  std::vector<CLI::ConfigItem> options = CLI::ConfigTOML::from_config(text);
  options.erase(std::remove_if(options.begin(), options.end(), IsSectionMark), options.end());
  for (CLI::ConfigItem& item : options) {
    RequireKnown(program_, item);
    // A list such as [12, -8, 5] is the value 12,-8,5 of the command line.
    item.inputs = {CLI::detail::join(item.inputs, ",")};
    if (IsPath(item.name)) {
      item.inputs.front() = (folder / std::filesystem::u8path(item.inputs.front())).u8string();
    }
  }
  return options;
}

}  // namespace trackedcam::app
