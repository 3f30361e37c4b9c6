#include "host/input/tiff_tags.h"

#include <algorithm>

namespace trackedcam::host {
namespace {

constexpr std::uint64_t kMostEntries = 65535;  // as many as a classic directory counts
constexpr std::uint64_t kFarthest = std::uint64_t{1} << 62;  // so that no sum of offsets overflows

// How long the parts of a directory are, in bytes.
struct Layout {
  std::size_t offset;  // of the directory
  std::size_t count;   // of its entries, and of an entry's values
  std::size_t entry;
};
constexpr Layout kClassic = {4, 2, 12};
constexpr Layout kBig = {8, 8, 20};

using ToNumber = std::uint64_t (*)(std::string_view);

std::uint64_t ValueOf(std::string_view entry, ToNumber number) {
  const std::uint64_t type = number(entry.substr(2, 2));
  const std::size_t length = type == 1 ? 1 : type == 3 ? 2 : type == 4 ? 4 : type == 16 ? 8 : 0;
  const std::size_t value = entry.size() == kBig.entry ? 12 : 8;
  return number(entry.substr(value, std::min(length, entry.size() - value)));
}

}  // namespace

std::optional<TiffTags> ReadTiffTags(const ReadBytes& read, std::uint64_t begin) {
  const std::string header = read(begin, 16);
  const std::string mark = header.substr(0, 4);
  const bool isBig = mark == std::string("II+\0", 4) || mark == std::string("MM\0+", 4);
  const bool isClassic = mark == std::string("II*\0", 4) || mark == std::string("MM\0*", 4);
  const Layout& layout = isBig ? kBig : kClassic;
  if ((!isBig && !isClassic) || header.size() < 2 * layout.offset) {
    return std::nullopt;
  }
  const ToNumber number = mark[0] == 'I' ? LittleEndian : BigEndian;
  const std::uint64_t offset =
      number(std::string_view(header).substr(layout.offset, layout.offset));
  if (offset > kFarthest || begin > kFarthest) {
    return std::nullopt;
  }
  const std::string count = read(begin + offset, layout.count);
  if (count.size() < layout.count) {
    return std::nullopt;
  }
  const auto entries = static_cast<std::size_t>(std::min(number(count), kMostEntries));
  const std::string directory = read(begin + offset + layout.count, entries * layout.entry);
  TiffTags tags;
  for (std::size_t at = 0; at + layout.entry <= directory.size(); at += layout.entry) {
    const std::string_view entry = std::string_view(directory).substr(at, layout.entry);
    const std::uint64_t value = ValueOf(entry, number);
    switch (number(entry.substr(0, 2))) {
      case 256:
        tags.width = std::max(tags.width, value);  // whichever of two a decoder takes
        break;
      case 257:
        tags.height = std::max(tags.height, value);
        break;
      case 274:
        tags.orientation = value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
        break;
      default:
        break;
    }
  }
  return tags;
}

}  // namespace trackedcam::host
