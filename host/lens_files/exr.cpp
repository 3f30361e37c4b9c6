#include "host/lens_files/exr.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <zlib.h>

namespace trackedcam::host {
namespace {

// Little-endian, as the format is on every machine.
template <class Unsigned>
void Append(std::string& bytes, Unsigned number) {
  for (std::size_t i = 0; i < sizeof(number); ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(number >> (8 * i)));
  }
}

void AppendInteger(std::string& bytes, int number) {
  Append(bytes, static_cast<std::uint32_t>(number));
}

void AppendFloat(std::string& bytes, float number) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof(bits));
  Append(bytes, bits);
}

void AppendText(std::string& bytes, const std::string& text) {
  bytes += text;
  bytes += '\0';
}

void AppendAttribute(std::string& bytes, const std::string& name, const std::string& type,
                     const std::string& value) {
  AppendText(bytes, name);
  AppendText(bytes, type);
  AppendInteger(bytes, static_cast<int>(value.size()));
  bytes += value;
}

constexpr int kRowsOfAChunk = 16;  // with this compression
constexpr char kZip = 3;

std::string Header(int width, int height, const std::vector<FloatChannel>& channels,
                   const std::string& comments) {
  constexpr std::uint32_t kMagic = 20000630;
  constexpr std::uint32_t kVersion = 2;
  constexpr std::uint32_t kFloat = 2;
  std::string list;
  for (const FloatChannel& channel : channels) {
    AppendText(list, channel.name);
    for (const std::uint32_t value : {kFloat, 0U, 1U, 1U}) {  // type, not linear, no subsampling
      Append(list, value);
    }
  }
  list += '\0';
  std::string window;
  for (const int corner : {0, 0, width - 1, height - 1}) {
    AppendInteger(window, corner);
  }
  std::string one;
  AppendFloat(one, 1);
  std::string header;
  Append(header, kMagic);
  Append(header, kVersion);
  AppendAttribute(header, "channels", "chlist", list);
  AppendAttribute(header, "comments", "string", comments);
  AppendAttribute(header, "compression", "compression", {kZip});
  AppendAttribute(header, "dataWindow", "box2i", window);
  AppendAttribute(header, "displayWindow", "box2i", window);
  AppendAttribute(header, "lineOrder", "lineOrder", std::string(1, '\0'));  // from the top
  AppendAttribute(header, "pixelAspectRatio", "float", one);
  AppendAttribute(header, "screenWindowCenter", "v2f", std::string(8, '\0'));
  AppendAttribute(header, "screenWindowWidth", "float", one);
  header += '\0';
  return header;
}

// The first halves of all pairs of bytes, then the second ones; then each as the difference from
// the one before it.
std::string Rearranged(const std::string& plain) {
  std::string bytes(plain.size(), '\0');
  const std::size_t half = (plain.size() + 1) / 2;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    bytes[i / 2 + (i % 2) * half] = plain[i];
  }
  for (std::size_t i = bytes.size(); i-- > 1;) {
    bytes[i] = static_cast<char>(bytes[i] - bytes[i - 1] + 128);
  }
  return bytes;
}

// Data that do not become shorter stay as they are.
std::string Compressed(const std::string& plain) {
  const std::string bytes = Rearranged(plain);
  uLongf length = compressBound(static_cast<uLong>(bytes.size()));
  std::string compressed(length, '\0');
  const int code =
      compress(reinterpret_cast<Bytef*>(compressed.data()), &length,
               reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  if (code == Z_MEM_ERROR) {
    throw std::bad_alloc();
  }
  if (code != Z_OK) {
    throw std::runtime_error("a picture cannot be compressed");
  }
  compressed.resize(length);
  return compressed.size() < plain.size() ? compressed : plain;
}

std::string Chunk(int width, int firstRow, int endRow, const std::vector<FloatChannel>& channels) {
  std::string plain;
  for (int row = firstRow; row < endRow; ++row) {
    for (const FloatChannel& channel : channels) {
      const std::size_t first = static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
      for (std::size_t i = first; i < first + static_cast<std::size_t>(width); ++i) {
        AppendFloat(plain, channel.values == nullptr ? 0 : (*channel.values)[i]);
      }
    }
  }
  const std::string data = Compressed(plain);
  std::string chunk;
  AppendInteger(chunk, firstRow);
  AppendInteger(chunk, static_cast<int>(data.size()));
  return chunk + data;
}

}  // namespace

std::string ExrBytes(int width, int height, const std::vector<FloatChannel>& channels,
                     const std::string& comments) {
  std::string bytes = Header(width, height, channels, comments);
  std::vector<std::string> chunks;
  for (int row = 0; row < height; row += kRowsOfAChunk) {
    chunks.push_back(Chunk(width, row, std::min(row + kRowsOfAChunk, height), channels));
  }
  std::uint64_t place = bytes.size() + chunks.size() * sizeof(place);
  for (const std::string& chunk : chunks) {
    Append(bytes, place);
    place += chunk.size();
  }
  for (const std::string& chunk : chunks) {
    bytes += chunk;
  }
  return bytes;
}

}  // namespace trackedcam::host
