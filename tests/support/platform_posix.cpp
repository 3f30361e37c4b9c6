#include <cstdlib>
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "support/platform.h"

namespace trackedcam::test {
namespace {

std::string Quoted(const std::string& word) {
  return '\'' + word + '\'';
}

}  // namespace

const bool kHasGnuStrtod = true;
const bool kAppendsWholeLines = true;
const bool kPathsAreBytes = true;
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

void SetBlasThreads(int threads) {
  using Set = void (*)(int);
  if (auto* const set = reinterpret_cast<Set>(dlsym(RTLD_DEFAULT, "openblas_set_num_threads"))) {
    set(threads);
  }
}

int BlasThreads() {
  using Get = int (*)();
  auto* const get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "openblas_get_num_threads"));
  return get == nullptr ? 1 : get();
}

bool MakePipe(const std::filesystem::path& path) {
  return mkfifo(path.c_str(), S_IRUSR | S_IWUSR) == 0;
}

std::vector<std::filesystem::path> SystemFiles() {
  return {"/dev/stdout", "/dev/fd/1", "/dev/null", "/proc/self/comm", "/sys/new"};
}

}  // namespace trackedcam::test
