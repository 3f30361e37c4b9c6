#include "simulator/simulated_files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <opencv2/imgcodecs.hpp>

namespace trackedcam::simulator {
namespace {

namespace fs = std::filesystem;

constexpr const char* kListName = "simulated.txt";
constexpr const char* kPartName = ".simulated.part";

// FNV-1a. It detects changes, not forgeries.
std::string HashOf(std::istream& content) {
  constexpr std::uint64_t kPrime = 1099511628211U;
  std::uint64_t hash = 14695981039346656037U;
  std::array<char, 65536> piece = {};
  while (content) {
    content.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    for (std::streamsize i = 0; i < content.gcount(); ++i) {
      hash = (hash ^ static_cast<unsigned char>(piece[static_cast<std::size_t>(i)])) * kPrime;
    }
  }
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

std::string HashOf(const std::string& content) {
  std::istringstream stream(content);
  return HashOf(stream);
}

// The lines of the list of what was simulated: a hash, two blanks and a name.
std::set<std::string> ReadList(const fs::path& folder) {
  std::ifstream file(folder / kListName, std::ios::binary);
  std::set<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.insert(line);
  }
  return lines;
}

std::string LineOf(const std::string& hash, const std::string& name) {
  return hash + "  " + name;
}

// Beside the file and then in its place, so that its other names (hard links) keep what they had.
// Binary, so that line ends are not converted.
void WriteFile(const fs::path& path, const std::string& content) {
  const fs::path part = path.parent_path() / kPartName;
  std::error_code error;
  fs::remove(part, error);
  std::ofstream file(part, std::ios::binary);
  file << content;
  file.close();
  if (file) {
    fs::rename(part, path, error);
  }
  if (!file || error) {
    fs::remove(part, error);
    throw std::runtime_error("Cannot write " + path.u8string() +
                             ": check the folder's permissions and the free disk space.");
  }
}

constexpr std::size_t kNamePlace = 18;  // in a line

std::string ListOf(const std::set<std::string>& lines) {
  std::string list;
  for (const std::string& line : lines) {
    list += line + '\n';
  }
  return list;
}

bool IsAsListed(const fs::path& folder, const std::string& name,
                const std::set<std::string>& lines) {
  std::ifstream file(folder / fs::u8path(name), std::ios::binary);
  return lines.count(LineOf(HashOf(file), name)) != 0;
}

}  // namespace

SimulatedFiles::SimulatedFiles(const fs::path& folder)
    : folder_(folder), earlier_(ReadList(folder)) {
  WriteFile(folder / kListName, ListOf(earlier_));
}

void SimulatedFiles::Write(const std::string& name, const std::string& content) {
  const std::string line = LineOf(HashOf(content), name);
  std::ofstream list(folder_ / kListName, std::ios::binary | std::ios::app);
  list << line << '\n' << std::flush;
  WriteFile(folder_ / fs::u8path(name), content);
  written_[name] = line;
}

void SimulatedFiles::Remove(const std::string& name) {
  fs::remove(folder_ / fs::u8path(name));
}

void SimulatedFiles::RemoveEarlier(const std::string& subfolder) {
  for (const std::string& line : earlier_) {
    const std::string name = line.size() > kNamePlace ? line.substr(kNamePlace) : "";
    if (name.compare(0, subfolder.size() + 1, subfolder + '/') == 0 && written_.count(name) == 0 &&
        IsAsListed(folder_, name, earlier_)) {
      Remove(name);
    }
  }
}

void SimulatedFiles::Finish() {
  std::set<std::string> lines;
  for (const std::string& line : earlier_) {
    if (line.size() > kNamePlace && written_.count(line.substr(kNamePlace)) == 0) {
      lines.insert(line);
    }
  }
  for (const auto& [name, line] : written_) {
    lines.insert(line);
  }
  WriteFile(folder_ / kListName, ListOf(lines));
}

std::vector<std::string> ChangedFiles(const fs::path& folder) {
  const std::set<std::string> lines = ReadList(folder);
  std::vector<std::string> names = {"camera_poses.txt", "chart_poses.txt", "shoot.toml",
                                    "tracker_data.csv", "truth.json"};
  for (const std::string pictures : {"photos", "frames"}) {
    if (fs::is_directory(folder / pictures)) {
      for (const fs::directory_entry& entry : fs::directory_iterator(folder / pictures)) {
        names.push_back(pictures + '/' + entry.path().filename().u8string());
      }
    }
  }
  std::sort(names.begin(), names.end());
  std::vector<std::string> changed;
  for (const std::string& name : names) {
    const fs::path path = folder / fs::u8path(name);
    if (fs::is_regular_file(path) && path.filename() != kPartName &&
        !IsAsListed(folder, name, lines)) {
      changed.push_back(name);
    }
  }
  return changed;
}

// Encoded in memory, because the image library cannot open every path.
std::string Jpeg(const cv::Mat& picture, int quality) {
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", picture, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
  return {bytes.begin(), bytes.end()};
}

}  // namespace trackedcam::simulator
