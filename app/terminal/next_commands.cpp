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

// Where a word of a command line ends, with its closing quote.
std::size_t EndOfWord(const std::string& line, std::size_t begin) {
  if (begin >= line.size() || line[begin] != '"') {
    return std::min(line.find(' ', begin), line.size());
  }
  for (std::size_t i = begin + 1; i < line.size(); ++i) {
    const bool isEscape = line[i] == '\\' && i + 1 < line.size() &&
                          std::string_view("\"$`").find(line[i + 1]) != std::string_view::npos;
    if (line[i] == '"') {
      return i + 1;
    }
    i += isEscape ? 1 : 0;
  }
  return line.size();
}

// Without an option and its value, however often it is there.
std::string WithoutOption(const std::string& line, const std::string& name) {
  std::string rest;
  for (std::size_t begin = 0; begin < line.size();) {
    std::size_t end = EndOfWord(line, begin);
    const std::size_t option = begin + (line[begin] == '"' ? 1 : 0);
    const bool isIt = line.compare(option, name.size(), name) == 0;
    if (isIt && end == option + name.size()) {
      end = EndOfWord(line, end + 1);  // the value is the next word
    } else if (!isIt || line[option + name.size()] != '=') {
      rest += (rest.empty() ? "" : " ") + line.substr(begin, end - begin);
    }
    begin = end + 1;
  }
  return rest;
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

std::vector<std::string> NextCalibrations(const std::string& commandLine,
                                          const host::Verdict& verdict) {
  std::vector<std::string> commands;
  if (const std::string next = WithOption(commandLine, verdict.option); !next.empty()) {
    commands.push_back(next);
  }
  if (!verdict.exclude.empty()) {
    std::string names;
    for (const std::string& name : verdict.exclude) {
      names += (names.empty() ? "" : ",") + name;
    }
    commands.push_back(WithoutOption(commandLine, "--exclude") + ' ' +
                       Quoted("--exclude=" + names));
  }
  return commands;
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
