// UTF-8: three readers agree about it, and the conversion there and back changes nothing.

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
    fuzz::Require(isUtf8, "UTF-8 for the library but not for the host");
    fuzz::Require(Utf8FromWide(wide) == text, "text that was converted there and back");
  } catch (const std::range_error&) {
    fuzz::Require(!isUtf8, "UTF-8 for the host but not for the library");
  }
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t length = host::CharacterLength(rest);
    fuzz::Require(length <= 4 && length <= rest.size(), "length of a character");
    fuzz::Require(length > 0 || !isUtf8, "an invalid character in UTF-8");
    rest.remove_prefix(length == 0 ? 1 : length);
  }
  return 0;
}
