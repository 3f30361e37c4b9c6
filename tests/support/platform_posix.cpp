#include <cstdlib>
#include <sys/stat.h>
#include <sys/wait.h>

#include "support/platform.h"

namespace trackedcam::test {
namespace {

std::string Quoted(const std::string& word) {
  return '\'' + word + '\'';
}

}  // namespace

const char* const kLineEnd = "\n";

int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const std::filesystem::path& outFile,
               const std::filesystem::path& errorFile) {
  std::string command = "cd " + Quoted(folder.u8string()) + " && " + Quoted(program.u8string());
  for (const std::string& argument : arguments) {
    command += ' ' + Quoted(argument);
  }
  command += " >" + Quoted(outFile.u8string()) + " 2>" + Quoted(errorFile.u8string());
  const int result = std::system(command.c_str());
  return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}

bool MakePipe(const std::filesystem::path& path) {
  return mkfifo(path.c_str(), S_IRUSR | S_IWUSR) == 0;
}

}  // namespace trackedcam::test
