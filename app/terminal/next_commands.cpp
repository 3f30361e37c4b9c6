#include "app/terminal/next_commands.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace trackedcam::app {
namespace {

bool IsPlain(char character) {
  constexpr std::string_view kSigns = "_-./:=,+@%\\";
  return static_cast<unsigned char>(character) >= 0x80 ||
         std::isalnum(static_cast<unsigned char>(character)) != 0 ||
         kSigns.find(character) != std::string_view::npos;
}

std::string Quoted(const std::string& word) {
  if (!word.empty() && std::all_of(word.begin(), word.end(), IsPlain)) {
    return word;
  }
  std::string quoted = "\"";
  for (const char character : word) {
    if (std::string_view("\"$`").find(character) != std::string_view::npos) {
      quoted += '\\';
    }
    quoted += character;
  }
  return quoted + '"';
}

std::string ExportCommand(const std::string& engine, const std::filesystem::path& result,
                          const std::string& parentAxes, bool writesLens) {
  std::vector<std::string> words = {"export", engine, "--result", result.u8string()};
  if (!parentAxes.empty()) {
    words.push_back("--parent-axes=" + parentAxes);  // the axes may begin with a minus sign
  }
  if (writesLens) {
    const auto lens = result.parent_path() / "lens.ulens";
    words.insert(words.end(), {"--out", lens.u8string()});
  }
  return CommandLine(words);
}

}  // namespace

std::string CommandLine(int argc, const char* const* argv) {
  return CommandLine(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
}

std::string CommandLine(const std::vector<std::string>& words) {
  std::string line = "trackedcam";
  for (const std::string& word : words) {
    line += ' ' + Quoted(word);
  }
  return line;
}

std::string WithOption(const std::string& commandLine, const std::string& option) {
  const std::string name = option.substr(0, option.find('='));
  const bool isThere = commandLine.find(' ' + name) != std::string::npos;
  return option.empty() || isThere ? "" : commandLine + ' ' + option;
}

std::vector<std::string> ExportCommands(const std::filesystem::path& result,
                                        const std::vector<const host::Engine*>& done,
                                        const std::string& parentAxes) {
  const bool isForUnreal = std::any_of(done.begin(), done.end(), [](const host::Engine* engine) {
    return engine->name == "unreal";
  });
  std::vector<std::string> commands;
  if (done.empty() || isForUnreal) {
    commands.push_back(ExportCommand("unreal", result, parentAxes, true));
  }
  if (done.empty()) {
    commands.push_back(ExportCommand("unity", result, parentAxes, false));
    commands.push_back(ExportCommand("aximmetry", result, "", false));
  }
  return commands;
}

}  // namespace trackedcam::app
