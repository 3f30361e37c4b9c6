#include "app/commands/toml_characters.h"

#include "host/text/text.h"

namespace trackedcam::app {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char kPlane15 = '\xF3';  // and then a byte 0xB0 to 0xBF

unsigned int Byte(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

}  // namespace

// Three bytes with 4, 6 and 6 bits become four with the same ones behind that of the plane; two
// with 5 and 6 bits become the same with none in front.
std::string ToTomlCharacters(std::string_view text) {
  const bool isMarked = text.substr(0, kByteOrderMark.size()) == kByteOrderMark;
  std::string shifted(isMarked ? kByteOrderMark : "");
  text.remove_prefix(shifted.size());
  while (const std::size_t length = host::CharacterLength(text)) {
    if (length == 2) {
      shifted += {kPlane15, '\xB0', static_cast<char>(0x80u | (Byte(text, 0) & 0x1Fu)), text[1]};
    } else if (length == 3) {
      shifted += {kPlane15, static_cast<char>(0xB0u | (Byte(text, 0) & 0x0Fu)), text[1], text[2]};
    } else {
      shifted += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return shifted.append(text);
}

std::string FromTomlCharacters(std::string_view text) {
  std::string plain;
  while (const std::size_t length = host::CharacterLength(text)) {
    if (length == 4 && text[0] == kPlane15 && Byte(text, 1) >= 0xB0) {
      const unsigned int front = Byte(text, 1) & 0x0Fu;
      const unsigned int middle = Byte(text, 2);
      if (front == 0 && middle < 0xA0) {
        plain += {static_cast<char>(0xC0u | (middle & 0x1Fu)), text[3]};
      } else {
        plain += {static_cast<char>(0xE0u | front), text[2], text[3]};
      }
    } else {
      plain += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return plain.append(text);
}

}  // namespace trackedcam::app
