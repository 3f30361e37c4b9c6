#include "host/text/files.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>

#include <nlohmann/json.hpp>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::string_view kPartBegin = ".trackedcam-";
constexpr std::string_view kPartEnd = ".part";

// A name of fixed length: the file's own name may have the longest length that is possible.
fs::path NameBeside(const fs::path& file) {
  std::random_device random;
  const std::uint64_t number = (static_cast<std::uint64_t>(random()) << 32) | random();
  std::array<char, 16> digits = {};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return file.parent_path() /
         std::string(kPartBegin).append(digits.data(), result.ptr).append(kPartEnd);
}

bool IsPart(const fs::path& file) {
  const std::string text = file.filename().u8string();
  std::string_view name = text;
  if (name.size() <= kPartBegin.size() + kPartEnd.size() ||
      name.substr(0, kPartBegin.size()) != kPartBegin ||
      name.substr(name.size() - kPartEnd.size()) != kPartEnd) {
    return false;
  }
  name.remove_prefix(kPartBegin.size());
  name.remove_suffix(kPartEnd.size());
  return name.find_first_not_of("0123456789abcdef") == std::string_view::npos;
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

fs::path FolderOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

[[noreturn]] void RefuseOutput(const fs::path& file, const std::string& reason) {
  throw std::runtime_error("cannot write " + file.u8string() + ": " + reason);
}

// Renaming replaces also a file that its owner protects, because it only changes the folder. Root
// may write to any file, so the permissions of a file count for root too.
bool IsProtected(const fs::path& file, const fs::file_status& status) {
  constexpr fs::perms kAnyWrite =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  return (status.permissions() & kAnyWrite) == fs::perms::none || !MayWrite(file);
}

void RequireReplaceable(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(file, error);
  if (status.type() == fs::file_type::directory) {
    RefuseOutput(file, "it is a folder, not a file");
  }
  if (status.type() == fs::file_type::regular) {
    if (IsProtected(file, status)) {
      RefuseOutput(file, "it is protected against writing");
    }
  } else if (status.type() != fs::file_type::not_found) {
    RefuseOutput(file, error ? error.message() : "it is not a regular file");
  }
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
constexpr std::size_t kDeepest = 100;
constexpr int kMostKeys = 1000;  // of one object: an ordered one takes quadratic time

// Not by the parser's callback: with one, a list of objects takes quadratic time. The text is read
// as the parser reads it up to its first error.
void RequireBounded(const std::string& text) {
  std::vector<int> keys;  // of each object that is open; of a list 0
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (isInString) {
      i += character == '\\' ? 1 : 0;
      isInString = character != '"';
    } else if (character == '"') {
      isInString = true;
    } else if (character == '[' || character == '{') {
      keys.push_back(0);
    } else if (keys.empty()) {
      continue;
    } else if (character == ']' || character == '}') {
      keys.pop_back();
    } else if (character == ':' && ++keys.back() > kMostKeys) {
      throw std::runtime_error("one of its objects has more than " + std::to_string(kMostKeys) +
                               " keys");
    }
    if (keys.size() > kDeepest) {
      throw std::runtime_error("it is nested too deep: more than " + std::to_string(kDeepest) +
                               " levels");
    }
  }
}

}  // namespace

std::string ReadFile(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {  // a device has no end, and a pipe may have no writer
    throw std::runtime_error("cannot read " + file.u8string());
  }
  std::ifstream stream(file, std::ios::binary);
  std::string content;
  std::string piece(65536, '\0');
  while (stream) {
    stream.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    content.append(piece, 0, static_cast<std::size_t>(stream.gcount()));
  }
  if (!stream.eof()) {
    throw std::runtime_error("cannot read " + file.u8string());
  }
  return content;
}

// One link after the other, because a folder of the system may be on the way: /dev/stdout is a link
// to a file that the system may replace by a link to anything.
fs::path OutputTarget(const fs::path& file) {
  constexpr int kMostLinks = 40;
  fs::path target = file;
  std::error_code error;
  for (int i = 0; i < kMostLinks; ++i) {
    const fs::path folder = fs::weakly_canonical(fs::absolute(FolderOf(target)), error);
    if (error) {
      RefuseOutput(file, error.message());
    }
    if (IsSystemFolder(folder) || IsDevice(target)) {
      RefuseOutput(file, "it is a file of the system");
    }
    if (!fs::is_symlink(target, error)) {
      RequireReplaceable(target);
      return target;
    }
    target = folder / fs::read_symlink(target, error);
    if (error) {
      RefuseOutput(file, error.message());
    }
  }
  RefuseOutput(file, "its links lead in a circle");
}

void WriteFile(const fs::path& file, const std::string& content) {
  const fs::path target = OutputTarget(file);
  std::error_code error;
  const fs::path beside = WriteBeside(target, content, error);
  if (!error) {
    KeepPermissions(target, beside);
    error = Replace(target, beside);
    if (error) {
      std::error_code ignored;
      fs::remove(beside, ignored);
    }
  }
  if (error) {
    RefuseOutput(file, error.message());
  }
  FlushFolder(target.parent_path());
  const fs::file_time_type now = fs::last_write_time(target, error);
  if (!error) {
    RemoveLeftParts(target.parent_path(), now);
  }
}

void RequireWritable(const fs::path& folder) {
  std::error_code error;
  const fs::path trial = WriteBeside(folder / "trial", std::string(4096, ' '), error);
  std::error_code ignored;
  fs::remove(trial, ignored);
  if (error) {
    RefuseOutput(folder, error.message());
  }
}

bool IsOld(const fs::path& path, fs::file_time_type now) {
  std::error_code error;
  const fs::file_time_type changed = fs::last_write_time(path, error);
  return !error && now - changed > std::chrono::minutes(1);
}

void RemoveLeftParts(const fs::path& folder, fs::file_time_type now) {
  std::error_code error;
  std::vector<fs::path> parts;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    std::error_code ignored;
    if (IsPart(entry->path()) && entry->symlink_status(ignored).type() == fs::file_type::regular &&
        IsOld(entry->path(), now)) {
      parts.push_back(entry->path());
    }
  }
  for (const fs::path& part : parts) {
    fs::remove(part, error);
  }
}

template <class Parsed>
Parsed ParseJson(const std::string& text) {
  RequireBounded(text);
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
