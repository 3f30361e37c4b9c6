#include "app/words/next_commands.h"

#include <algorithm>

#include "app/words/command_line.h"

namespace trackedcam::app {
namespace {

std::string ExportCommand(const std::string& engine, const std::filesystem::path& result,
                          const std::string& parentAxes, bool writesLens) {
  std::vector<std::string> words = {"export", engine, "--result", result.u8string()};
  if (!parentAxes.empty()) {
    words.push_back("--parent-axes=" + parentAxes);  // they may begin with a minus sign
  }
  if (writesLens) {
    const auto lens = result.parent_path() / "lens.ulens";
    words.insert(words.end(), {"--out", lens.u8string()});
  }
  return CommandLine(words);
}

}  // namespace

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
