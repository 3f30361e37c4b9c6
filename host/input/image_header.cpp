#include "host/input/image_header.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace trackedcam::host {
namespace {

using ToNumber = std::uint64_t (*)(std::string_view);
using Header = std::optional<PhotographHeader>;

// Up to eight bytes as an integer, the most significant first.
std::uint64_t BigEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes) {
    number = (number << 8) | static_cast<unsigned char>(byte);
  }
  return number;
}

std::uint64_t LittleEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) {
    number = (number << 8) | static_cast<unsigned char>(bytes[i - 1]);
  }
  return number;
}

struct TiffTags {
  std::uint64_t width = 0;   // pixels; 0: no such tag
  std::uint64_t height = 0;  // pixels; 0: no such tag
  int orientation = 1;       // 1 to 8
};

constexpr std::uint64_t kMostEntries = 65535;                      // of a classic directory
constexpr std::uint64_t kFarthestOffset = std::uint64_t{1} << 62;  // no sum of offsets overflows

// Lengths of the parts of a directory, bytes.
struct Layout {
  std::size_t offset;  // of the directory
  std::size_t count;   // of its entries, and of an entry's values
  std::size_t entry;
};
constexpr Layout kClassic = {4, 2, 12};
constexpr Layout kBig = {8, 8, 20};

std::uint64_t ValueOf(std::string_view entry, ToNumber number) {
  const std::uint64_t type = number(entry.substr(2, 2));
  const std::size_t length = type == 1 ? 1 : type == 3 ? 2 : type == 4 ? 4 : type == 16 ? 8 : 0;
  const std::size_t value = entry.size() == kBig.entry ? 12 : 8;
  return number(entry.substr(value, std::min(length, entry.size() - value)));
}

// The first directory of a TIFF file; Exif is one too, inside an image of another format. Offsets
// in it count from `begin`, where "II" or "MM" is.
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
  if (offset > kFarthestOffset || begin > kFarthestOffset) {
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
        tags.width = std::max(tags.width, value);  // a decoder may use either of two tags
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

// No camera writes more parts.
constexpr int kMostParts = 1000;

std::string_view Part(const std::string& bytes, std::size_t begin, std::size_t length) {
  return begin <= bytes.size() ? std::string_view(bytes).substr(begin, length) : std::string_view();
}

Header HeaderOf(PhotographFormat format, std::uint64_t width, std::uint64_t height,
                int orientation = 1) {
  return width == 0 || height == 0 ? std::nullopt : Header({format, width, height, orientation});
}

int OrientationAt(const ReadBytes& read, std::uint64_t begin) {
  const auto tags = ReadTiffTags(read, begin);
  return tags ? tags->orientation : 1;
}

constexpr std::string_view kExifMark("Exif\0\0", 6);

bool HoldsSize(std::uint64_t jpegMarker) {
  return jpegMarker >= 0xC0 && jpegMarker <= 0xCF && jpegMarker != 0xC4 && jpegMarker != 0xC8 &&
         jpegMarker != 0xCC;
}

bool StandsAlone(std::uint64_t jpegMarker) {
  return jpegMarker == 0x01 || (jpegMarker >= 0xD0 && jpegMarker <= 0xD8);
}

// The offset of the next marker: decoders skip other bytes. Nothing if it is far away.
std::optional<std::uint64_t> NextMarker(const ReadBytes& read, std::uint64_t offset) {
  constexpr std::size_t kFarthest = 65536;
  const std::string bytes = read(offset, kFarthest);
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
    if (bytes[i] == '\xFF' && bytes[i + 1] != '\xFF' && bytes[i + 1] != '\0') {
      return offset + i;
    }
  }
  return std::nullopt;
}

Header JpegHeader(const ReadBytes& read) {
  PhotographHeader header;
  bool hasExif = false;
  std::uint64_t offset = 2;
  for (int part = 0; part < kMostParts; ++part) {
    const std::string bytes = read(offset, 10);
    const std::uint64_t marker = BigEndian(Part(bytes, 1, 1));
    if (bytes.size() < 4) {
      return std::nullopt;
    }
    if (bytes[0] != '\xFF' || marker == 0xFF || marker == 0) {  // filling bytes
      const auto next = NextMarker(read, offset);
      if (!next) {
        return std::nullopt;
      }
      offset = *next;
      continue;
    }
    if (StandsAlone(marker)) {
      offset += 2;
      continue;
    }
    if (marker == 0xDA) {  // the pixels begin
      return HeaderOf(PhotographFormat::kJpeg, header.width, header.height, header.orientation);
    }
    if (HoldsSize(marker) && bytes.size() >= 9) {
      header.height = BigEndian(Part(bytes, 5, 2));
      header.width = BigEndian(Part(bytes, 7, 2));
    }
    if (marker == 0xE1 && !hasExif && Part(bytes, 4, 6) == kExifMark) {
      hasExif = true;
      header.orientation = OrientationAt(read, offset + 10);
    }
    offset += 2 + BigEndian(Part(bytes, 2, 2));
  }
  return std::nullopt;
}

// The offset of the marker that ends the pixels of a scan.
std::uint64_t EndOfScan(const ReadBytes& read, std::uint64_t offset) {
  constexpr std::size_t kPiece = 1 << 20;
  while (true) {
    const std::string bytes = read(offset, kPiece);
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
      const auto next = static_cast<unsigned char>(bytes[i + 1]);
      const bool isRestart = next >= 0xD0 && next <= 0xD7;
      if (bytes[i] == '\xFF' && next != 0 && next != 0xFF && !isRestart) {
        return offset + i;
      }
    }
    if (bytes.size() < kPiece) {
      return offset + bytes.size();
    }
    offset += kPiece - 1;  // a marker may be in two pieces
  }
}

Header PngHeader(const ReadBytes& read) {
  const std::string begin = read(0, 24);
  if (begin.size() < 24 || Part(begin, 12, 4) != "IHDR") {
    return std::nullopt;
  }
  int orientation = 1;
  std::uint64_t offset = 8;
  for (int part = 0; part < kMostParts; ++part) {
    const std::string chunk = read(offset, 8);
    if (chunk.size() < 8 || Part(chunk, 4, 4) == "IEND") {
      break;
    }
    if (Part(chunk, 4, 4) == "eXIf") {
      orientation = OrientationAt(read, offset + 8);
      break;
    }
    offset += 12 + BigEndian(Part(chunk, 0, 4));
  }
  return HeaderOf(PhotographFormat::kPng, BigEndian(Part(begin, 16, 4)),
                  BigEndian(Part(begin, 20, 4)), orientation);
}

// A negative height means rows from top to bottom.
std::uint64_t Magnitude(std::uint64_t number) {
  return number < 0x80000000U ? number : 0x100000000U - number;
}

Header BmpHeader(const ReadBytes& read) {
  const std::string begin = read(0, 26);
  if (begin.size() < 26) {
    return std::nullopt;
  }
  const bool isOld = LittleEndian(Part(begin, 14, 4)) == 12;
  return isOld ? HeaderOf(PhotographFormat::kBmp, LittleEndian(Part(begin, 18, 2)),
                          LittleEndian(Part(begin, 20, 2)))
               : HeaderOf(PhotographFormat::kBmp, Magnitude(LittleEndian(Part(begin, 18, 4))),
                          Magnitude(LittleEndian(Part(begin, 22, 4))));
}

Header TiffHeader(const ReadBytes& read) {
  const auto tags = ReadTiffTags(read, 0);
  return tags ? HeaderOf(PhotographFormat::kTiff, tags->width, tags->height, tags->orientation)
              : std::nullopt;
}

// Lossy, lossless, or the canvas of either.
void TakeWebpSize(const std::string& chunk, PhotographHeader& header) {
  const std::string_view name = Part(chunk, 0, 4);
  if (chunk.size() < 18 || (header.width != 0 && name != "VP8X")) {
    return;
  }
  if (name == "VP8 ") {
    header.width = LittleEndian(Part(chunk, 14, 2)) & 0x3FFFU;
    header.height = LittleEndian(Part(chunk, 16, 2)) & 0x3FFFU;
  } else if (name == "VP8L") {
    const std::uint64_t bits = LittleEndian(Part(chunk, 9, 4));
    header.width = (bits & 0x3FFFU) + 1;
    header.height = ((bits >> 14) & 0x3FFFU) + 1;
  } else if (name == "VP8X") {
    header.width = LittleEndian(Part(chunk, 12, 3)) + 1;
    header.height = LittleEndian(Part(chunk, 15, 3)) + 1;
  }
}

Header WebpHeader(const ReadBytes& read) {
  PhotographHeader header;
  std::uint64_t offset = 12;
  for (int part = 0; part < kMostParts; ++part) {
    const std::string chunk = read(offset, 18);
    if (chunk.size() < 8) {
      break;
    }
    TakeWebpSize(chunk, header);
    if (Part(chunk, 0, 4) == "EXIF") {
      const bool isMarked = Part(chunk, 8, 6) == kExifMark;
      header.orientation = OrientationAt(read, offset + (isMarked ? 14 : 8));
      break;
    }
    const std::uint64_t length = LittleEndian(Part(chunk, 4, 4));
    offset += 8 + length + length % 2;
  }
  return HeaderOf(PhotographFormat::kWebp, header.width, header.height, header.orientation);
}

// Reads no bytes from what is not a regular file: a pipe is never opened.
template <class Ask>
auto OfFile(const std::filesystem::path& file, Ask ask) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    return ask([](std::uint64_t, std::size_t) { return std::string(); });
  }
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  std::ifstream stream;
  stream.rdbuf()->pubsetbuf(nullptr, 0);  // otherwise each small step reads a block
  stream.open(file, std::ios::binary);
  return ask([&](std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    stream.clear();
    if (error || offset >= size || !stream.seekg(static_cast<std::streamoff>(offset))) {
      return std::string();
    }
    stream.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
  });
}

constexpr std::uint64_t kEndLength = 12;

struct Ends {
  std::string begin;  // at most kEndLength bytes each
  std::string end;
};

Ends EndsOf(const std::filesystem::path& file, std::uint64_t size) {
  const std::uint64_t length = std::min(size, kEndLength);
  Ends ends = {std::string(length, '\0'), std::string(length, '\0')};
  std::ifstream stream(file, std::ios::binary);
  stream.read(ends.begin.data(), static_cast<std::streamsize>(length));
  stream.seekg(static_cast<std::streamoff>(size - length));
  stream.read(ends.end.data(), static_cast<std::streamsize>(length));
  return stream ? ends : Ends();
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

Header ReadPhotographHeader(const ReadBytes& read) {
  const std::string mark = read(0, 12);
  if (Part(mark, 0, 3) == "\xFF\xD8\xFF") {
    return JpegHeader(read);
  }
  if (Part(mark, 0, 8) == "\x89PNG\r\n\x1A\n") {
    return PngHeader(read);
  }
  if (Part(mark, 0, 2) == "BM") {
    return BmpHeader(read);
  }
  if (Part(mark, 0, 4) == "RIFF" && Part(mark, 8, 4) == "WEBP") {
    return WebpHeader(read);
  }
  return TiffHeader(read);
}

bool HasMoreScans(const ReadBytes& read, int most) {
  constexpr int kMostMarkers = 10000;
  constexpr std::uint64_t kEnd = 0xD9;
  int scans = 0;
  std::uint64_t offset = 2;
  for (int i = 0; i < kMostMarkers; ++i) {
    const std::string bytes = read(offset, 4);
    if (bytes.size() < 4) {
      return false;
    }
    const std::uint64_t marker = BigEndian(Part(bytes, 1, 1));
    if (bytes[0] != '\xFF' || marker == 0xFF || marker == 0) {  // filling bytes
      offset = EndOfScan(read, offset + (bytes[0] == '\xFF' && marker == 0 ? 1 : 0));
    } else if (marker == kEnd) {
      return false;
    } else if (StandsAlone(marker)) {
      offset += 2;
    } else {
      offset += 2 + BigEndian(Part(bytes, 2, 2));
      if (marker == 0xDA) {
        if (++scans > most) {
          return true;
        }
        offset = EndOfScan(read, offset);
      }
    }
  }
  return true;  // no camera writes so many parts
}

Header ParsePhotographHeader(std::string_view bytes) {
  return ReadPhotographHeader([&](std::uint64_t offset, std::size_t count) {
    return offset < bytes.size() ? std::string(bytes.substr(offset, count)) : std::string();
  });
}

bool BeginsAsPhotograph(const ReadBytes& read) {
  using namespace std::string_view_literals;
  constexpr std::array kMarks = {"\xFF\xD8\xFF"sv, "\x89PNG"sv, "BM"sv,    "RIFF"sv,
                                 "II*\0"sv,        "MM\0*"sv,   "II+\0"sv, "MM\0+"sv};
  const std::string begin = read(0, 4);
  return std::any_of(kMarks.begin(), kMarks.end(),
                     [&](std::string_view mark) { return Part(begin, 0, mark.size()) == mark; });
}

bool BeginsAsPhotograph(const std::filesystem::path& file) {
  return OfFile(file, [](const ReadBytes& read) { return BeginsAsPhotograph(read); });
}

Header ReadPhotographHeader(const std::filesystem::path& file) {
  return OfFile(file, [](const ReadBytes& read) { return ReadPhotographHeader(read); });
}

bool HasMoreScans(const std::filesystem::path& file, int most) {
  return OfFile(file, [&](const ReadBytes& read) { return HasMoreScans(read, most); });
}

bool IsCompleteImage(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    return false;
  }
  const std::uint64_t size = std::filesystem::file_size(file, error);
  const auto [begin, end] = EndsOf(file, error ? 0 : size);
  const std::string_view mark = begin;
  if (mark.size() < kEndLength) {
    return false;
  }
  if (mark.substr(0, 2) == "\xFF\xD8") {
    return EndsWith(end, "\xFF\xD9");
  }
  if (mark.substr(0, 8) == "\x89PNG\r\n\x1A\n") {
    return EndsWith(end, "IEND\xAE\x42\x60\x82");
  }
  if (mark.substr(0, 2) == "BM") {
    return LittleEndian(mark.substr(2, 4)) <= size;
  }
  if (mark.substr(0, 4) == "RIFF") {
    return LittleEndian(mark.substr(4, 4)) + 8 <= size;
  }
  if (mark.substr(0, 2) == "II" || mark.substr(0, 2) == "MM") {
    return ReadPhotographHeader(file).has_value();  // its directory is behind the pixels
  }
  return true;
}

}  // namespace trackedcam::host
