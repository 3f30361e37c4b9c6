#include "app/run/log_message.h"

namespace trackedcam::app {
namespace {

constexpr std::string_view kTimeForm = "dddd-dd-dd dd:dd:dd\t";

bool IsTime(std::string_view text) {
  for (std::size_t i = 0; i < kTimeForm.size(); ++i) {
    const bool fits =
        kTimeForm[i] == 'd' ? (text[i] >= '0' && text[i] <= '9') : text[i] == kTimeForm[i];
    if (!fits) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<std::string> LogMessage(std::string_view line) {
  for (; line.size() >= kTimeForm.size(); line.remove_prefix(1)) {
    if (IsTime(line)) {
      return std::string(line.substr(kTimeForm.size()));
    }
  }
  return std::nullopt;
}

}  // namespace trackedcam::app
