#include "app/words/command_line.h"

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

}  // namespace trackedcam::app
