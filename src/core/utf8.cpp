#include "core/utf8.h"

#include <cstdint>
#include <stdexcept>

namespace trackedcam {
namespace {

constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

[[noreturn]] void Fail() {
  throw std::range_error("bad conversion");
}

bool IsHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

bool IsCharacter(std::uint32_t codePoint) {
  return codePoint <= 0x10FFFF && !IsHighSurrogate(codePoint) && !IsLowSurrogate(codePoint);
}

// A character of UTF-8, as its first byte announces it.
struct Sequence {
  int continuationBytes;
  std::uint32_t leadBits;        // the bits of the first byte that belong to the code point
  std::uint32_t leastCodePoint;  // a smaller one has a shorter form, and the longer is not UTF-8
};

Sequence SequenceOf(unsigned char lead) {
  if (lead < 0x80) {
    return {0, 0x7Fu, 0};
  }
  if ((lead & 0xE0) == 0xC0) {
    return {1, 0x1Fu, 0x80};
  }
  if ((lead & 0xF0) == 0xE0) {
    return {2, 0x0Fu, 0x800};
  }
  if ((lead & 0xF8) == 0xF0) {
    return {3, 0x07u, 0x10000};
  }
  Fail();
}

std::uint32_t TakeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const Sequence sequence = SequenceOf(lead);
  std::uint32_t codePoint = lead & sequence.leadBits;
  text.remove_prefix(1);
  for (int i = 0; i < sequence.continuationBytes; ++i) {
    const unsigned char byte = text.empty() ? 0 : static_cast<unsigned char>(text.front());
    if ((byte & 0xC0u) != 0x80) {
      Fail();
    }
    codePoint = (codePoint << 6) | (byte & 0x3Fu);
    text.remove_prefix(1);
  }
  if (codePoint < sequence.leastCodePoint || !IsCharacter(codePoint)) {
    Fail();
  }
  return codePoint;
}

std::uint32_t TakeCodePoint(std::wstring_view& text) {
  auto codePoint = static_cast<std::uint32_t>(text.front());
  text.remove_prefix(1);
  if (kWideIsUtf16 && IsHighSurrogate(codePoint) && !text.empty() &&
      IsLowSurrogate(static_cast<std::uint32_t>(text.front()))) {
    const auto low = static_cast<std::uint32_t>(text.front());
    text.remove_prefix(1);
    codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
  }
  if (!IsCharacter(codePoint)) {
    Fail();
  }
  return codePoint;
}

void Append(std::wstring& wide, std::uint32_t codePoint) {
  if (kWideIsUtf16 && codePoint >= 0x10000) {
    wide += static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10));
    wide += static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
  } else {
    wide += static_cast<wchar_t>(codePoint);
  }
}

void Append(std::string& utf8, std::uint32_t codePoint) {
  const auto byte = [&](std::uint32_t value) { utf8 += static_cast<char>(value); };
  const auto continuation = [&](int shift) { byte(0x80 | ((codePoint >> shift) & 0x3F)); };
  if (codePoint < 0x80) {
    byte(codePoint);
  } else if (codePoint < 0x800) {
    byte(0xC0 | (codePoint >> 6));
    continuation(0);
  } else if (codePoint < 0x10000) {
    byte(0xE0 | (codePoint >> 12));
    continuation(6);
    continuation(0);
  } else {
    byte(0xF0 | (codePoint >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

template <class Target, class Source>
Target Convert(Source text) {
  Target converted;
  converted.reserve(text.size());
  while (!text.empty()) {
    Append(converted, TakeCodePoint(text));
  }
  return converted;
}

}  // namespace

std::wstring WideFromUtf8(std::string_view text) {
  return Convert<std::wstring>(text);
}

std::string Utf8FromWide(std::wstring_view text) {
  return Convert<std::string>(text);
}

}  // namespace trackedcam
