#include "app/terminal/output.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <string_view>

#include "host/text/text.h"

namespace trackedcam::app {

void PrintRow(std::ostream& out, const std::string& label, const std::vector<std::string>& values) {
  constexpr int kLabelWidth = 30;
  constexpr int kColumnWidth = 13;
  out << "  " << std::left << std::setw(kLabelWidth) << label << std::right;
  for (const std::string& value : values) {
    out << std::setw(kColumnWidth) << value;
  }
  out << '\n';
}

void PrintRow(std::ostream& out, const std::string& label, const std::vector<double>& values,
              int decimals) {
  std::vector<std::string> texts;
  texts.reserve(values.size());
  for (const double value : values) {
    texts.push_back(host::Fixed(value, decimals));
  }
  PrintRow(out, label, texts);
}

namespace {

int PlainIndex() {
  static const int kIndex = std::ios_base::xalloc();
  return kIndex;
}

unsigned int Byte(char character) {
  return static_cast<unsigned char>(character);
}

// Of a complete character.
unsigned int CodePoint(std::string_view character) {
  constexpr std::array<unsigned int, 5> kLeadMasks = {0, 0x7F, 0x1F, 0x0F, 0x07};
  unsigned int code = Byte(character.front()) & kLeadMasks.at(character.size());
  for (const char next : character.substr(1)) {
    code = (code << 6) | (Byte(next) & 0x3Fu);
  }
  return code;
}

// Control characters, and those that change the direction of the text or separate lines.
bool IsControl(unsigned int code) {
  const bool isPlain = code == '\n' || code == '\t' || code == '\f';
  return (code < 0x20 && !isPlain) || (code >= 0x7F && code <= 0x9F) || code == 0x061C ||
         code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

std::string Escape(const char* begin, unsigned int code, int digits) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = begin;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += kDigits[(code >> static_cast<unsigned int>(shift)) & 0xFu];
  }
  return text;
}

// Whether it can become a character with more bytes.
bool IsUnfinished(std::string_view text) {
  const unsigned int lead = Byte(text.front());
  const std::size_t needed = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  if (lead > 0xF4 || text.size() >= needed) {
    return false;
  }
  return std::all_of(text.begin() + 1, text.end(),
                     [](char next) { return (Byte(next) & 0xC0u) == 0x80; });
}

}  // namespace

EscapedOutput::EscapedOutput(std::ostream& stream) : stream_(stream), plain_(stream.rdbuf()) {
  stream_.pword(PlainIndex()) = plain_;
  stream_.rdbuf(this);
}

EscapedOutput::~EscapedOutput() {
  EscapedOutput::sync();
  const std::ios_base::iostate state = stream_.rdstate();
  stream_.rdbuf(plain_);  // clears the state
  stream_.clear(state);
  stream_.pword(PlainIndex()) = nullptr;
}

EscapedOutput::int_type EscapedOutput::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) {
    return sync() == 0 ? traits_type::not_eof(character) : traits_type::eof();
  }
  const char one = traits_type::to_char_type(character);
  return xsputn(&one, 1) == 1 ? character : traits_type::eof();
}

std::streamsize EscapedOutput::xsputn(const char* text, std::streamsize length) {
  waiting_.append(text, static_cast<std::size_t>(length));
  return Write(false) ? length : 0;
}

int EscapedOutput::sync() {
  return Write(true) && plain_->pubsync() == 0 ? 0 : -1;
}

bool EscapedOutput::Write(bool isEnd) {
  std::string text;
  std::string_view rest = waiting_;
  while (!rest.empty() && (isEnd || !IsUnfinished(rest))) {
    const std::size_t length = host::CharacterLength(rest);
    const std::string_view character = rest.substr(0, length);
    if (length == 0) {
      text += Escape("\\x", Byte(rest.front()), 2);
    } else if (const unsigned int code = CodePoint(character); IsControl(code)) {
      text += Escape("\\u", code, 4);
    } else {
      text += character;
    }
    rest.remove_prefix(length == 0 ? 1 : length);
  }
  waiting_ = std::string(rest);
  const auto size = static_cast<std::streamsize>(text.size());
  return plain_->sputn(text.data(), size) == size;
}

std::streambuf* PlainOutput(std::ostream& stream) {
  void* plain = stream.pword(PlainIndex());
  return plain == nullptr ? stream.rdbuf() : static_cast<std::streambuf*>(plain);
}

namespace {

// Characters that are not ASCII may take two.
std::size_t ColumnsOf(std::string_view character) {
  return character.size() == 1 ? 1 : 2;
}

std::size_t Columns(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const std::size_t length = std::max<std::size_t>(1, host::CharacterLength(text));
    columns += ColumnsOf(text.substr(0, length));
    text.remove_prefix(length);
  }
  return columns;
}

// The name without its folder; of a long one the end, where the numbers are.
std::string ShortName(const std::string& photograph) {
  constexpr std::size_t kMostColumns = 16;
  std::ostringstream escaped;
  {
    EscapedOutput escapes(escaped);
    escaped << photograph.substr(photograph.find_last_of("/\\") + 1);
  }
  std::string name = escaped.str();
  std::replace_if(
      name.begin(), name.end(), [](char character) { return Byte(character) < 0x20; }, ' ');
  if (Columns(name) <= kMostColumns) {
    return name;
  }
  while (Columns(name) > kMostColumns - 3) {
    name.erase(0, std::max<std::size_t>(1, host::CharacterLength(name)));
  }
  return "..." + name;
}

// Rounded so that it does not change with every photograph.
std::string LeftText(double seconds) {
  const auto whole = static_cast<long>(std::ceil(seconds));
  return whole < 100 ? std::to_string(whole) + " s" : std::to_string((whole + 59) / 60) + " min";
}

}  // namespace

std::optional<double> TimeLeft::At(const host::Progress& progress, double now) {
  constexpr std::size_t kLeastPhotographs = 5;
  constexpr double kLeastSeconds = 1;
  if (progress.stage != stage_ || progress.done < done_) {
    stage_ = progress.stage;
    begin_ = now;
  }
  done_ = progress.done;
  const double passed = now - begin_;
  if (done_ < kLeastPhotographs || done_ >= progress.all || passed < kLeastSeconds) {
    return std::nullopt;
  }
  return passed / static_cast<double>(done_) * static_cast<double>(progress.all - done_);
}

std::string ProgressText(const host::Progress& progress, const std::optional<double>& secondsLeft) {
  constexpr std::size_t kStageWidth = 20;
  constexpr std::size_t kCells = 10;
  std::string text = progress.stage;
  if (progress.all == 0) {
    return text + " (how long is not known) ...";
  }
  text.resize(std::max(text.size(), kStageWidth), ' ');
  const std::size_t filled = kCells * std::min(progress.done, progress.all) / progress.all;
  text += '[' + std::string(filled, '#') + std::string(kCells - filled, '.') + "] " +
          std::to_string(progress.done) + " of " + std::to_string(progress.all);
  if (secondsLeft) {
    text += ", " + LeftText(*secondsLeft) + " left";
  }
  return progress.photograph.empty() ? text : text + ": " + ShortName(progress.photograph);
}

void ProgressBar::Show(const host::Progress& progress) {
  const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
  Draw(ProgressText(progress, left_.At(progress, now.count())));
}

ProgressBar::~ProgressBar() {
  if (width_ > 0) {
    Draw("");
  }
}

void ProgressBar::Draw(const std::string& text) {
  // Blanks overwrite the rest of a longer text.
  const std::size_t width = Columns(text);
  const std::size_t blanks = width_ - std::min(width_, width);
  terminal_ << '\r' << text << std::string(blanks, ' ') << (text.empty() ? "\r" : "") << std::flush;
  width_ = width;
}

}  // namespace trackedcam::app
