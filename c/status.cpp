#include "c/status.h"

#include <cstring>

#include "host/text/text.h"

namespace trackedcam::c {

void Message::Set(const char* message) noexcept {
  std::size_t length = std::strlen(message);
  if (length >= text.size()) {
    length = text.size() - 1;
    while (length > 0 && (static_cast<unsigned char>(message[length]) & 0xC0U) == 0x80) {
      --length;
    }
  }
  std::memcpy(text.data(), message, length);
  text[length] = '\0';
}

Message& LastError() noexcept {
  thread_local Message message = {};
  return message;
}

std::string RequireText(const char* text, const char* name) {
  RequirePointer(text, name);
  if (!host::IsUtf8(text)) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is not UTF-8.");
  }
  return text;
}

std::string OptionalText(const char* text, const char* name) {
  return text == nullptr ? std::string() : RequireText(text, name);
}

void RequireSize(std::size_t size, std::size_t expected, const char* name) {
  if (size != expected) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " has " + std::to_string(size) +
                                                   " bytes, version " + TRACKEDCAM_VERSION +
                                                   " expects " + std::to_string(expected) +
                                                   ": host and library are of different versions.");
  }
}

}  // namespace trackedcam::c

const char* trackedcam_c_version(void) {
  return TRACKEDCAM_VERSION;
}

const char* trackedcam_last_error(void) {
  return trackedcam::c::LastError().text.data();
}
