#include <string>
#include <vector>
#include <windows.h>

#include "app/main.h"

namespace {

std::string Utf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

}  // namespace

// wmain, because the arguments of main have a ? for each character that the code page does not
// have.
int wmain(int argc, wchar_t** argv) {
  SetConsoleOutputCP(CP_UTF8);  // fails without a console; then nothing is shown
  std::vector<std::string> arguments;
  for (int i = 0; i < argc; ++i) {
    arguments.push_back(Utf8(argv[i]));
  }
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  return trackedcam::app::Main(argc, pointers.data());
}
