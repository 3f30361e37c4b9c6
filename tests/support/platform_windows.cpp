#include <windows.h>

#include "support/platform.h"

namespace trackedcam::test {
namespace {

// A file whose handle the started program inherits.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    handle_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  ~OutputFile() { CloseHandle(handle_); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  HANDLE Handle() const { return handle_; }

 private:
  HANDLE handle_;
};

// Quotes a word for a command line. Backslashes are special only before a quotation mark.
std::wstring Quoted(const std::wstring& word) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t character : word) {
    if (character == L'"') {
      quoted.append(backslashes + 1, L'\\');
    }
    backslashes = character == L'\\' ? backslashes + 1 : 0;
    quoted += character;
  }
  return quoted.append(backslashes, L'\\') + L'"';
}

}  // namespace

const bool kHasGnuStrtod = false;
const bool kAppendsWholeLines = false;  // finding the end and writing there are separate steps
const bool kPathsAreBytes = false;
const char* const kLineEnd = "\r\n";

int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const std::filesystem::path& outFile,
               const std::filesystem::path& errorFile) {
  std::wstring command = Quoted(program.wstring());
  for (const std::string& argument : arguments) {
    command += L' ' + Quoted(std::filesystem::u8path(argument).wstring());
  }
  const OutputFile out(outFile);
  const OutputFile error(errorFile);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = out.Handle();
  startup.hStdError = error.Handle();
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(),
                      &startup, &process)) {
    return -1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  // A crash ends with a code of the system, such as 0xC0000005.
  return status <= 255 ? static_cast<int>(status) : -1;
}

void SetBlasThreads(int /*threads*/) {}

int BlasThreads() {
  return 1;  // built without threads
}

bool MakePipe(const std::filesystem::path& /*path*/) {
  return false;
}

std::vector<std::filesystem::path> SystemFiles() {
  return {"NUL", "con.txt", "Com1"};
}

}  // namespace trackedcam::test
