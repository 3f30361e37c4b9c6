#include "report/html.h"

#include <cstdint>

namespace trackedcam::report {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool IsControl(unsigned char byte) {
  return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F;
}

bool IsPlainInAddress(unsigned char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= 'a' && byte <= 'z') ||
         std::string_view("-._~/").find(static_cast<char>(byte)) != std::string_view::npos;
}

std::string PercentEncoded(std::string_view path) {
  std::string address;
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (IsPlainInAddress(byte)) {
      address += character;
    } else {
      address += {'%', kHexDigits[byte >> 4U], kHexDigits[byte & 0xFU]};
    }
  }
  return address;
}

}  // namespace

std::string EscapeHtml(std::string_view text) {
  std::string html;
  html.reserve(text.size());
  for (const char character : text) {
    switch (character) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        if (IsControl(static_cast<unsigned char>(character))) {
          html += kReplacement;
        } else {
          html += character;
        }
    }
  }
  return html;
}

std::string EscapeJson(std::string_view json) {
  std::string escaped;
  escaped.reserve(json.size());
  for (const char character : json) {
    if (character == '<') {
      escaped += "\\u003c";  // outside of strings JSON has none
    } else {
      escaped += character;
    }
  }
  return escaped;
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t j = i; j < i + 3; ++j) {
      group = group << 8U | (j < bytes.size() ? static_cast<unsigned char>(bytes[j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += i + j <= bytes.size() ? kDigits[group >> (18U - 6U * j) & 0x3FU] : '=';
    }
  }
  return text;
}

std::string BytesOfHex(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
  }
  return bytes;
}

std::string FileLink(const std::filesystem::path& file, const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  const fs::path from = folder.empty() ? fs::current_path() : fs::absolute(folder);
  const fs::path to = fs::absolute(file).lexically_normal();
  const fs::path way = to.lexically_relative(from.lexically_normal());
  if (way.empty()) {  // on another drive
    const std::string path = to.generic_u8string();
    return (path.rfind('/', 0) == 0 ? "file://" : "file:///") + PercentEncoded(path);
  }
  // The dot keeps a name such as "javascript:" from being read as a scheme.
  return "./" + PercentEncoded(way.generic_u8string());
}

std::string_view ImageType(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xFF\xD8\xFF") {
    return "image/jpeg";
  }
  if (bytes.substr(0, 4) == "\x89PNG") {
    return "image/png";
  }
  return {};
}

}  // namespace trackedcam::report
