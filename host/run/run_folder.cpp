#include "host/run/run_folder.h"

#include <algorithm>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDataName = "tracker_data.csv";
constexpr std::size_t kDigits = 3;  // of the number of a run

// 0 for what is no numbered folder, and for the last number, which none could follow.
int NumberOf(const std::string& name, const std::string& prefix) {
  if (name.compare(0, prefix.size(), prefix) != 0) {
    return 0;
  }
  const int number = ParseInteger(std::string_view(name).substr(prefix.size())).value_or(0);
  return number == std::numeric_limits<int>::max() ? 0 : number;
}

int LastNumber(const fs::path& logFolder, const std::string& prefix) {
  int last = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(logFolder)) {
    last = std::max(last, NumberOf(entry.path().filename().u8string(), prefix));
  }
  return last;
}

// Without any file, in its subfolders neither: its run was killed before it had begun.
bool IsLeftover(const fs::path& folder, fs::file_time_type now) {
  std::error_code error;
  if (!fs::is_directory(fs::symlink_status(folder, error)) || !IsOld(folder, now)) {
    return false;
  }
  RemoveLeftParts(folder, now);
  fs::recursive_directory_iterator entry(folder, error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    if (!fs::is_directory(entry->symlink_status())) {
      return false;
    }
  }
  return !error;
}

// The deepest first. A folder in which something was created meanwhile stays.
void RemoveFolders(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> folders = {folder};
  for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
    folders.push_back(entry.path());
  }
  for (auto last = folders.rbegin(); last != folders.rend() && !error; ++last) {
    fs::remove(*last, error);
  }
}

// So that runs that are killed, for example by a host's time limit, do not fill the log folder.
void RemoveLeftovers(const fs::path& logFolder, const std::string& prefix) {
  const fs::file_time_type now = fs::file_time_type::clock::now();
  try {
    std::vector<fs::path> leftovers;
    for (const fs::directory_entry& entry : fs::directory_iterator(logFolder)) {
      if (NumberOf(entry.path().filename().u8string(), prefix) > 0 && IsLeftover(entry, now)) {
        leftovers.push_back(entry.path());
      }
    }
    std::for_each(leftovers.begin(), leftovers.end(), RemoveFolders);
  } catch (const std::system_error&) {  // another run may be removing the same ones
  }
}

fs::path CreateNext(const fs::path& logFolder, const std::string& prefix) {
  fs::create_directories(logFolder);
  RemoveLeftovers(logFolder, prefix);
  for (int next = LastNumber(logFolder, prefix) + 1;; ++next) {
    std::string number = std::to_string(next);
    number.insert(0, kDigits - std::min(kDigits, number.size()), '0');
    fs::path folder = logFolder / (prefix + number);
    if (fs::create_directory(folder)) {  // false where another run was quicker
      return folder;
    }
  }
}

// The library takes what follows the last backslash of the photograph's name, folders and all.
fs::path ReprojectedImage(const fs::path& folder, const std::string& photograph) {
  const std::string name = photograph.substr(photograph.find_last_of('\\') + 1);
  return folder / fs::u8path("Reproject_" + name);
}

// False if the name could lead out of the folder, up through "..".
bool StaysInFolder(const std::string& photograph) {
  const fs::path image = ReprojectedImage({}, photograph);
  return std::find(image.begin(), image.end(), "..") == image.end();
}

std::string AbsolutePath(const std::string& photograph, const fs::path& workingFolder) {
  std::error_code error;
  const fs::path path = workingFolder / fs::u8path(photograph);
  const fs::path canonical = fs::weakly_canonical(path, error);
  return (error ? path.lexically_normal() : canonical).u8string();
}

bool WorksIn(const fs::path& folder) {
  std::error_code error;
  return fs::equivalent(fs::current_path(), folder, error);
}

// Where the library writes the image, in a folder that exists. Empty for a name that is no path on
// this system: the run goes on without the image.
fs::path ImageWithFolder(const fs::path& runFolder, const std::string& photograph) {
  try {
    fs::path image = ReprojectedImage(runFolder, photograph);
    fs::create_directories(image.parent_path());
    return image;
  } catch (const std::system_error&) {
    return {};
  }
}

struct NameAndImage {
  std::string name;  // as the library is given it
  fs::path image;
};

NameAndImage ForLibrary(const std::string& photograph, const fs::path& workingFolder,
                        bool worksThere, const fs::path& runFolder) {
  try {
    const bool serves = photograph.empty() || fs::u8path(photograph).is_absolute() || worksThere;
    if (serves && StaysInFolder(photograph)) {
      fs::path image = ImageWithFolder(runFolder, photograph);
      // Windows has no folder whose name ends with a dot, which ../photos/a.jpg would need.
      if (!image.empty()) {
        return {photograph, std::move(image)};
      }
    }
    const std::string name = AbsolutePath(photograph, workingFolder);
    return {name, ImageWithFolder(runFolder, name)};
  } catch (const std::exception&) {  // what is no path on this system names no photograph
    return {photograph, {}};
  }
}

// A path that this system made absolute may hold what ends a field of the data file.
void RequireReadable(const std::string& name) {
  if (name.find_first_of(",\r\n") != std::string::npos) {
    throw InputError("the library reads a path up to the first comma or line ending, and that of " +
                     name + " has one: rename its folder, or start in the working folder");
  }
}

template <class Numbers>
std::string NumbersText(const Numbers& numbers) {
  std::string text;
  for (const double number : numbers) {
    text += (text.empty() ? "\"" : ",") + Shortest(number);
  }
  return text + '"';
}

// A string of TOML in double quotes.
std::string Quoted(const std::string& text) {
  constexpr const char* kHexDigits = "0123456789ABCDEF";
  std::string quoted = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte == 0x7F) {
      quoted += std::string("\\u00") + kHexDigits[byte >> 4U] + kHexDigits[byte & 0xFU];
    } else {
      quoted += character == '"' || character == '\\' ? "\\" : "";
      quoted += character;
    }
  }
  return quoted + '"';
}

}  // namespace

fs::path CreateNumberedFolder(const fs::path& logFolder, const std::string& word) {
  try {
    fs::path folder = CreateNext(logFolder, word + '_');
    RequireWritable(folder);
    return folder;
  } catch (const std::exception& error) {
    throw InputError("cannot write to the log folder " + logFolder.u8string() +
                     ", and without a log there is no record of a run: " + error.what());
  }
}

fs::path CreateRunFolder(const fs::path& logFolder) {
  return CreateNumberedFolder(logFolder, "run");
}

RunData WriteRunData(const std::vector<DataRow>& rows, const fs::path& workingFolder,
                     const fs::path& runFolder) {
  RunData data = {runFolder / kDataName, {}, {}};
  const bool worksThere = WorksIn(workingFolder);
  std::string text = "Time,photograph,and both trackers\n";
  for (const DataRow& row : rows) {
    auto [name, image] = ForLibrary(row.photograph, workingFolder, worksThere, runFolder);
    if (name != row.photograph) {
      RequireReadable(name);
    }
    text += WithPhotograph(row, name) + '\n';
    data.photographs.push_back(std::move(name));
    data.images.push_back(std::move(image));
  }
  WriteFile(data.file, text);
  return data;
}

void WriteRunConfig(const Inputs& inputs, const std::optional<Mounting>& mounting,
                    const fs::path& runFolder) {
  std::string text =
      "# The options of this run: trackedcam calibrate --config calibrate.toml\n[calibrate]\n";
  const auto add = [&](const char* option, const std::string& value) {
    text += std::string(option) + " = " + value + '\n';
  };
  add("data", Quoted(kDataName));
  add("working-folder", Quoted(inputs.workingFolder.u8string()));
  add("log-folder", Quoted(".."));
  add("sensor", '"' + Shortest(inputs.sensorMm[0]) + 'x' + Shortest(inputs.sensorMm[1]) + '"');
  add("board", '"' + std::to_string(inputs.board[0]) + 'x' + std::to_string(inputs.board[1]) + '"');
  add("square", Shortest(inputs.squareMetres));
  if (mounting) {
    add("chart-rotation", NumbersText(mounting->rotationDegrees));
    add("chart-translation", NumbersText(mounting->translationMetres));
  }
  add("invert-tracker-quaternions", inputs.invertTrackerQuaternions ? "true" : "false");
  add("good-enough",
      '"' + Shortest(inputs.goodEnough.mm) + "mm," + Shortest(inputs.goodEnough.degrees) + "deg\"");
  add("scale-uncertainty", '"' + Shortest(100 * inputs.scaleUncertainty) + "%\"");
  if (!inputs.atMetres.empty()) {
    add("at", NumbersText(inputs.atMetres));
  }
  if (inputs.expectedRecords) {
    add("expected-records", std::to_string(*inputs.expectedRecords));
  }
  WriteFile(runFolder / "calibrate.toml", text);
}

}  // namespace trackedcam::host
