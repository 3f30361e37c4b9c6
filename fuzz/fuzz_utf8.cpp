// UTF-8: there and back, and three readers of one opinion.

#include <stdexcept>

#include "core/utf8.h"
#include "fuzz/fuzz.h"
#include "host/text/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  const std::string_view text = fuzz::TextOf(data, size);
  const bool isUtf8 = host::IsUtf8(text);
  try {
    const std::wstring wide = WideFromUtf8(text);
    fuzz::Require(isUtf8, "what library and host take for UTF-8");
    fuzz::Require(Utf8FromWide(wide) == text, "text that went there and back");
  } catch (const std::range_error&) {
    fuzz::Require(!isUtf8, "what library and host take for UTF-8");
  }
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t length = host::CharacterLength(rest);
    fuzz::Require(length <= 4 && length <= rest.size(), "a character within the text");
    fuzz::Require(length > 0 || !isUtf8, "characters of UTF-8");
    rest.remove_prefix(length == 0 ? 1 : length);
  }
  return 0;
}
