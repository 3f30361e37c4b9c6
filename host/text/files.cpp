#include "host/text/files.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <nlohmann/json.hpp>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A name of fixed length: the file's own name may have the longest length that is possible.
fs::path NameBeside(const fs::path& file) {
  std::random_device random;
  const std::uint64_t number = (static_cast<std::uint64_t>(random()) << 32) | random();
  std::array<char, 16> digits = {};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return file.parent_path() / (".trackedcam-" + std::string(digits.data(), result.ptr) + ".part");
}

// If the name exists, another one is tried: another process may be writing, or may have been
// stopped.
fs::path WriteBeside(const fs::path& file, const std::string& content, std::error_code& error) {
  constexpr int kTrials = 10;
  for (int i = 0; i < kTrials; ++i) {
    fs::path beside = NameBeside(file);
    error = WriteNewFile(beside, content);
    if (error != std::errc::file_exists) {
      return beside;
    }
  }
  return {};
}

// Not a device, for example: renaming would replace it by a file.
bool CanBeReplaced(const fs::path& file) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(file, error).type();
  return type == fs::file_type::not_found || type == fs::file_type::regular ||
         type == fs::file_type::symlink;
}

// While another process replaces or reads the same file, Windows refuses for a moment.
std::error_code Replace(const fs::path& file, const fs::path& by) {
  constexpr int kTrials = 40;
  constexpr std::chrono::milliseconds kMoment(25);
  std::error_code error;
  fs::rename(by, file, error);
  for (int i = 1; i < kTrials && error == std::errc::permission_denied; ++i) {
    std::this_thread::sleep_for(kMoment);
    fs::rename(by, file, error);
  }
  return error;
}

void KeepPermissions(const fs::path& from, const fs::path& to) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(from, error);
  if (status.type() == fs::file_type::regular) {
    fs::permissions(to, status.permissions(), error);
  }
}

constexpr std::uintmax_t kMostBytes = 64 << 20;
constexpr int kDeepest = 100;

// Not by the parser's callback: with one, a list of objects takes quadratic time. The text is read
// as the parser reads it up to its first error.
void RequireShallow(const std::string& text) {
  int depth = 0;
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (isInString) {
      i += character == '\\' ? 1 : 0;
      isInString = character != '"';
    } else if (character == '"') {
      isInString = true;
    } else if (character == '[' || character == '{') {
      ++depth;
    } else if (character == ']' || character == '}') {
      --depth;
    }
    if (depth > kDeepest) {
      throw std::runtime_error("it is nested too deep: more than " + std::to_string(kDeepest) +
                               " levels");
    }
  }
}

}  // namespace

std::string ReadFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string content;
  std::string piece(65536, '\0');
  while (stream) {
    stream.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    content.append(piece, 0, static_cast<std::size_t>(stream.gcount()));
  }
  if (!stream.eof() || fs::is_directory(file)) {
    throw std::runtime_error("cannot read " + file.u8string());
  }
  return content;
}

void WriteFile(const fs::path& file, const std::string& content) {
  std::error_code error = std::make_error_code(std::errc::invalid_argument);
  if (CanBeReplaced(file)) {
    const fs::path beside = WriteBeside(file, content, error);
    if (!error) {
      KeepPermissions(file, beside);
      error = Replace(file, beside);
      if (error) {
        std::error_code ignored;
        fs::remove(beside, ignored);
      }
    }
  }
  if (error) {
    throw std::runtime_error("cannot write " + file.u8string() + ": " + error.message());
  }
  FlushFolder(file.parent_path());
}

template <class Parsed>
Parsed ParseJson(const std::string& text) {
  RequireShallow(text);
  return Parsed::parse(text);
}

template <class Parsed>
Parsed ReadJson(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::file_size(file, error) > kMostBytes || error) {
    throw std::runtime_error(error ? "cannot read " + file.u8string()
                                   : "it is too large: more than 64 MB");
  }
  return ParseJson<Parsed>(ReadFile(file));
}

template nlohmann::json ParseJson(const std::string& text);
template nlohmann::ordered_json ParseJson(const std::string& text);
template nlohmann::json ReadJson(const std::filesystem::path& file);
template nlohmann::ordered_json ReadJson(const std::filesystem::path& file);

std::vector<double> ReadNumbers(const nlohmann::json& json, const char* key, std::size_t count) {
  auto numbers = json.at(key).get<std::vector<double>>();
  if (numbers.size() != count) {
    throw std::invalid_argument(std::string(key) + " has the wrong length");
  }
  return numbers;
}

Json NumberJson(const std::optional<double>& number) {
  return number && std::isfinite(*number) ? Json(*number) : Json(nullptr);
}

Json NumbersJson(const std::vector<double>& numbers) {
  Json list = Json::array();
  for (const double number : numbers) {
    list.push_back(NumberJson(number));
  }
  return list;
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace trackedcam::host
