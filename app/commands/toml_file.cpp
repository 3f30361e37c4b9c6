#include "app/commands/toml_file.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <system_error>

// A text can break assertions of the parser, such as "[@". By default that ends the program or is
// undefined; here it throws, and the text is refused.
namespace {
[[noreturn]] void RefuseText() {
  throw std::invalid_argument("not TOML");
}
}  // namespace
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expr) ((expr) ? static_cast<void>(0) : RefuseText())
#define TOML_HEADER_ONLY 1        // every system has the headers
#define TOML_ENABLE_FORMATTERS 0  // not used, and slow to compile
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include "host/input/inputs.h"
#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBeyondAscii =
    "; a ? stands for a character beyond ASCII: only strings and comments may have one";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string PlaceOf(const toml::source_region& region) {
  return "line " + std::to_string(region.begin.line) + ", column " +
         std::to_string(region.begin.column);
}

bool IsBeyondAscii(char character) {
  return static_cast<unsigned char>(character) >= 0x80;
}

class TomlFile {
 public:
  explicit TomlFile(const fs::path& path) : path_(path.u8string()) {
    constexpr std::uintmax_t kMostBytes = 1 << 20;
    std::error_code ignored;
    if (fs::file_size(path, ignored) > kMostBytes) {
      throw host::InputError(path_ + " is too large for a configuration file: more than 1 MB");
    }
    text_ = host::ReadFile(path);
    if (text_.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
      text_.erase(0, kByteOrderMark.size());
    }
  }

  /// The parser has undefined behaviour for many characters beyond ASCII, such as U+00E9, where it
  /// looks for white space. TOML allows a ? only in strings and comments. So if a copy with a ? for
  /// each such character is TOML, the parser sees them only there.
  toml::table Parse() const {
    RequireText();
    const std::string copy = WithoutCharactersBeyondAscii();
    if (copy != text_) {
      Parse(copy);
    }
    return Parse(text_);
  }

 private:
  [[noreturn]] void RejectLine(std::size_t position, const std::string& reason) const {
    const auto begin = text_.begin();
    const auto line = 1 + std::count(begin, begin + static_cast<std::ptrdiff_t>(position), '\n');
    throw host::InputError(path_ + ", line " + std::to_string(line) + ": " + reason);
  }

  // The parser takes some control characters for the end of the text. After a backslash at the end
  // of a line in a string, it looks for white space.
  void RequireText() const {
    const auto isControl = [](char character) {
      return character >= 0 && character < ' ' && character != '\n' && character != '\r' &&
             character != '\t';
    };
    const auto control = std::find_if(text_.begin(), text_.end(), isControl);
    if (control != text_.end()) {
      RejectLine(static_cast<std::size_t>(control - text_.begin()),
                 "a control character; delete it");
    }
    if (!host::IsUtf8(text_)) {
      throw host::InputError(path_ + " is not UTF-8: save it in this encoding");
    }
    for (std::size_t i = text_.find('\\'); i != std::string::npos; i = text_.find('\\', i + 1)) {
      const std::size_t next = std::min(text_.find_first_not_of(" \t\r\n", i + 1), text_.size());
      if (next < text_.size() && IsBeyondAscii(text_[next]) && text_.find('\n', i) < next) {
        RejectLine(next,
                   "after a backslash at the end of a line, the next line must begin with an "
                   "ASCII character");
      }
    }
  }

  std::string WithoutCharactersBeyondAscii() const {
    std::string copy;
    for (const char character : text_) {
      const bool isContinued = (static_cast<unsigned char>(character) & 0xC0u) == 0x80;
      if (!isContinued) {
        copy += IsBeyondAscii(character) ? '?' : character;
      }
    }
    return copy;
  }

  toml::table Parse(const std::string& text) const {
    try {
      return toml::parse(text, path_);
    } catch (const toml::parse_error& error) {
      const std::string reason(error.description());
      const auto has = [&](const char* part) { return reason.find(part) != std::string::npos; };
      throw host::InputError(path_ + ", " + PlaceOf(error.source()) + ": " + reason +
                             (has("escape") ? std::string("; ") + kPathsInToml : "") +
                             (has("'?'") && text != text_ ? kBeyondAscii : ""));
    } catch (const std::invalid_argument&) {
      throw host::InputError(path_ +
                             ": a name is invalid; names are letters, digits, dashes and "
                             "underscores");
    }
  }

  std::string path_;
  std::string text_;
};

std::string TextOf(const toml::node& value, const std::string& name) {
  if (const toml::array* list = value.as_array()) {
    std::string text;
    for (const toml::node& element : *list) {
      text += (text.empty() ? "" : ",") + TextOf(element, name);
    }
    return text;
  }
  if (const auto* text = value.as_string()) {
    return text->get();
  }
  if (const auto* number = value.as_integer()) {
    return std::to_string(number->get());
  }
  if (const auto* number = value.as_floating_point()) {
    return host::Shortest(number->get());
  }
  if (const auto* flag = value.as_boolean()) {
    return flag->get() ? "true" : "false";
  }
  throw host::InputError(name + " must be a string, number, list or boolean (" +
                         PlaceOf(value.source()) + ")");
}

std::vector<std::string> ElementsOf(const toml::node& value, const std::string& name) {
  std::vector<std::string> elements;
  if (const toml::array* list = value.as_array()) {
    for (const toml::node& element : *list) {
      elements.push_back(TextOf(element, name));
    }
    return elements;
  }
  return {TextOf(value, name)};
}

}  // namespace

std::vector<TomlSection> ReadTomlFile(const fs::path& file) {
  std::vector<TomlSection> sections;
  const toml::table parsed = TomlFile(file).Parse();
  for (const auto& [name, content] : parsed) {
    const toml::table* options = content.as_table();
    if (options == nullptr) {
      throw host::InputError("the option " + std::string(name.str()) + " (" +
                             PlaceOf(name.source()) +
                             ") is not in a section: write the section, such as [calibrate], "
                             "above it");
    }
    TomlSection section = {std::string(name.str()), PlaceOf(name.source()), {}};
    for (const auto& [key, value] : *options) {
      const std::string option(key.str());
      const std::string full = section.name + '.' + option;
      section.options.push_back(
          {option, TextOf(value, full), ElementsOf(value, full), PlaceOf(key.source())});
    }
    sections.push_back(std::move(section));
  }
  return sections;
}

}  // namespace trackedcam::app
