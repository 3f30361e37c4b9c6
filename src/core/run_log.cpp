#include "core/run_log.h"

#include <array>

#include "core/console.h"
#include "core/platform.h"
#include "core/utf8.h"

namespace trackedcam {

std::string FormatLocalTime(const std::string& key) {
  // These formats write digits only, so the host's locale does not matter.
  const char* format = "";
  if (key == "now") {
    format = "%Y-%m-%d %H:%M:%S";
  } else if (key == "date") {
    format = "%Y-%m-%d-%H.%M.%S";
  }
  const std::tm time = LocalTime();
  std::array<char, 80> buffer = {};
  const std::size_t length = std::strftime(buffer.data(), buffer.size(), format, &time);
  return std::string(buffer.data(), length);
}

void OpenRunLog(RunLog& log, const std::string& folder) {
  UseUtf8Console();
  const std::string name = "log_" + FormatLocalTime("date") + ".txt";
  log.path = WideFromUtf8(folder) + L"//" + WideFromUtf8(name);
}

void WriteRunLogLine(const RunLog& log, const std::string& message) {
  const std::string line = FormatLocalTime("now") + '\t' + message;
  if (const File file = OpenFile(log.path, "a")) {
    std::fwrite(line.data(), 1, line.size(), file.get());
    std::fputc('\n', file.get());
  }
  PrintLine(line);
}

}  // namespace trackedcam
