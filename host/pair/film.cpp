#include "host/pair/film.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>
#include <utility>

#include "host/input/data_file.h"
#include "host/input/input_error.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostFrames = 1000000;
constexpr std::string_view kTimestamps = "# timecode format v2";

bool IsPicture(const fs::path& file) {
  static const std::set<std::string> kExtensions = {".jpg",  ".jpeg", ".png", ".bmp",
                                                    ".tiff", ".tif",  ".webp"};
  std::string extension = file.extension().u8string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return kExtensions.count(extension) != 0;
}

std::string_view WithoutZeros(std::string_view digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string_view::npos ? std::string_view() : digits.substr(first);
}

// frame9 before frame10.
bool IsBeforeByNumbers(const std::string& a, const std::string& b) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      const std::size_t beginA = i;
      const std::size_t beginB = j;
      while (i < a.size() && isDigit(a[i])) {
        ++i;
      }
      while (j < b.size() && isDigit(b[j])) {
        ++j;
      }
      const auto numberA = WithoutZeros(std::string_view(a).substr(beginA, i - beginA));
      const auto numberB = WithoutZeros(std::string_view(b).substr(beginB, j - beginB));
      if (numberA.size() != numberB.size()) {
        return numberA.size() < numberB.size();
      }
      if (numberA != numberB) {
        return numberA < numberB;
      }
    } else if (a[i] != b[j]) {
      return a[i] < b[j];
    } else {
      ++i;
      ++j;
    }
  }
  return a.size() - i < b.size() - j || (a.size() - i == b.size() - j && a < b);
}

std::vector<std::string> PicturesIn(const fs::path& folder) {
  std::error_code error;
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (names.size() < kMostFrames && IsPicture(entry.path()) && entry.is_regular_file(error)) {
      names.push_back(entry.path().filename().u8string());
    }
  }
  if (names.empty()) {
    throw InputError(folder.u8string() + " has no pictures: name the folder of the film's frames");
  }
  std::sort(names.begin(), names.end(), IsBeforeByNumbers);
  return names;
}

// As the table has it: the name of a file, or its number in the order of the folder, from 1. Empty
// if there is no such frame.
std::string NameOf(std::string_view field, const std::vector<std::string>& names,
                   const std::set<std::string>& pictures) {
  std::string name(field);
  const auto number = ParseInteger(field);
  if (pictures.count(name) != 0) {
    return name;
  }
  return number && *number >= 1 && static_cast<std::size_t>(*number) <= names.size()
             ? names[static_cast<std::size_t>(*number) - 1]
             : std::string();
}

[[noreturn]] void ThrowAt(const fs::path& file, std::size_t line, const std::string& reason) {
  throw InputError(file.u8string() + ", line " + std::to_string(line) + ": " + reason);
}

// Puts each frame into a film once, if it has a time of its own.
class FilmOfTimes {
 public:
  FilmOfTimes(const fs::path& folder, std::vector<std::string> names) : names_(std::move(names)) {
    film_.folder = folder;
  }

  const std::vector<std::string>& Names() const { return names_; }

  /// @param name Empty: there is no such frame.
  void Add(const std::string& name, double seconds) {
    if (name.empty()) {
      ++film_.timesWithoutFrame;
    } else if (!timed_.insert(name).second || !seconds_.insert(seconds).second) {
      ++film_.repeatedTimes;
    } else {
      film_.frames.push_back({name, seconds});
    }
  }

  Film Finish(const fs::path& times) {
    if (film_.frames.empty()) {
      throw InputError(times.u8string() + " names no frame of " + film_.folder.u8string() +
                       ": its first column must have the names of the files, such as " +
                       names_.front());
    }
    film_.framesWithoutTime = names_.size() - timed_.size();
    std::sort(film_.frames.begin(), film_.frames.end(),
              [](const FilmFrame& a, const FilmFrame& b) { return a.seconds < b.seconds; });
    return std::move(film_);
  }

 private:
  Film film_;
  std::vector<std::string> names_;
  std::set<std::string> timed_;
  std::set<double> seconds_;
};

}  // namespace

Film ReadFilm(const fs::path& folder, const fs::path& times) {
  FilmOfTimes film(folder, PicturesIn(folder));
  const std::vector<std::string>& names = film.Names();
  const std::set<std::string> pictures(names.begin(), names.end());
  const std::string content = ReadDataContent(times);
  bool isOfTimestamps = false;
  std::size_t line = 0;
  std::size_t frame = 0;  // of timestamps
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = std::min(content.find('\n', begin), content.size());
    const std::string_view text = Trim(std::string_view(content).substr(begin, end - begin));
    begin = end + 1;
    ++line;
    if (text.empty()) {
      continue;
    }
    const std::vector<std::string_view> fields = SplitFields(text);
    if (line == 1) {
      isOfTimestamps = text.substr(0, kTimestamps.size()) == kTimestamps;
      if (!isOfTimestamps &&
          (fields.size() < 2 || Trim(fields[0]) != "frame" || Trim(fields[1]) != "time")) {
        ThrowAt(times, 1, "the header must be frame,time");
      }
      continue;
    }
    const std::string_view time = isOfTimestamps ? fields[0] : fields[fields.size() < 2 ? 0 : 1];
    if ((!isOfTimestamps && fields.size() < 2) || KindOf(time) != FieldKind::kNumber) {
      ThrowAt(times, line, "expected a frame and its time in seconds");
    }
    if (isOfTimestamps) {
      film.Add(frame < names.size() ? names[frame] : std::string(), 1e-3 * NumberIn(time));
      ++frame;
    } else {
      film.Add(NameOf(Trim(fields[0]), names, pictures), NumberIn(time));
    }
  }
  return film.Finish(times);
}

Film ReadFilm(const fs::path& folder, double framesPerSecond) {
  Film film;
  film.folder = folder;
  for (const std::string& name : PicturesIn(folder)) {
    film.frames.push_back({name, static_cast<double>(film.frames.size()) / framesPerSecond});
  }
  return film;
}

}  // namespace trackedcam::host
