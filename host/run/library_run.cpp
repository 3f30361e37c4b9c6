#include "host/run/library_run.h"

#include <algorithm>
#include <limits>
#include <string>
#include <system_error>

#include "host/input/image_header.h"
#include "host/input/inputs.h"
#include "host/run/run_log.h"
#include "host/text/files.h"
#include "host/text/text.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDigits = 3;

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

fs::path CreateNext(const fs::path& logFolder, const std::string& prefix) {
  fs::create_directories(logFolder);
  for (int next = LastNumber(logFolder, prefix) + 1;; ++next) {
    std::string number = std::to_string(next);
    number.insert(0, kDigits - std::min(kDigits, number.size()), '0');
    fs::path folder = logFolder / (prefix + number);
    if (fs::create_directory(folder)) {  // false where another run was quicker
      return folder;
    }
  }
}

// A folder can be created on a disk that is full, or kept from being written in.
void RequireWritable(const fs::path& folder) {
  const fs::path trial = folder / "trial";
  WriteFile(trial, std::string(4096, ' '));
  fs::remove(trial);
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

std::string NameForLibrary(const DataRow& row, const fs::path& workingFolder, bool worksThere) {
  const std::string& photograph = row.photograph;
  if (photograph.empty()) {
    return photograph;
  }
  try {
    const bool serves = fs::u8path(photograph).is_absolute() || worksThere;
    return serves && StaysInFolder(photograph) ? photograph
                                               : AbsolutePath(photograph, workingFolder);
  } catch (const std::exception&) {  // what is no path on this system names no photograph
    return photograph;
  }
}

int CallLibrary(const Inputs& inputs, const Mounting& mounting, const LibraryData& data,
                const std::filesystem::path& folder, CalibrationOutputs& outputs) {
  const auto list = [](const std::array<double, 3>& values) {
    return std::vector<double>(values.begin(), values.end());
  };
  const int records = inputs.expectedRecords.value_or(static_cast<int>(data.photographs.size()));
  return Calibration(data.file.u8string(), inputs.sensorMm[0], inputs.sensorMm[1], inputs.board[0],
                     inputs.board[1], inputs.squareMetres, list(mounting.rotationDegrees),
                     list(mounting.translationMetres), outputs.imageSize, outputs.normFocal,
                     outputs.normCenter, outputs.distortion, outputs.transformCamTc,
                     outputs.fieldOfView, outputs.focalLengthMm, folder.u8string(),
                     inputs.invertTrackerQuaternions, records);
}

// A message of several lines would not stand in a sentence.
std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The log is written before each step: its last lines tell in which one the call ended.
std::string StoppedAt(const RunRecord& record, const std::vector<DataRow>& rows) {
  const std::size_t count = record.photographs.size();
  const auto hasRaw = [](const Photograph& photograph) { return photograph.raw.has_value(); };
  const bool isSearching =
      !std::any_of(record.photographs.begin(), record.photographs.end(), hasRaw);
  if (isSearching && count > 0 && count <= rows.size()) {
    return "row " + std::to_string(rows[count - 1].line) + ", " + rows[count - 1].photograph;
  }
  return record.lastMessage.empty() ? "" : "the step after \"" + record.lastMessage + '"';
}

// Of the photographs that the second pass went through, when it did.
std::vector<std::string> LostImages(const LibraryRun& run, const LibraryData& data) {
  std::vector<std::string> lost;
  const std::vector<Photograph>& photographs = run.record.photographs;
  if (run.outputs.transformCamTc.empty() || photographs.size() != data.photographs.size()) {
    return lost;
  }
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    if (!photographs[i].dropped &&
        !IsWholePicture(ReprojectedImage(run.folder, data.photographs[i]))) {
      lost.push_back(photographs[i].path);
    }
  }
  return lost;
}

// The library may have been given other names for them.
void NameAsGiven(std::vector<Photograph>& photographs, const std::vector<DataRow>& rows) {
  for (std::size_t i = 0; i < photographs.size() && i < rows.size(); ++i) {
    photographs[i].path = rows[i].photograph;
  }
}

}  // namespace

fs::path CreateNumberedFolder(const fs::path& logFolder, const std::string& word) {
  try {
    fs::path folder = CreateNext(logFolder, word + '_');
    RequireWritable(folder);
    return folder;
  } catch (const std::exception& error) {
    throw InputError("cannot write below the log folder " + logFolder.u8string() +
                     ", and without a log there is no record of a run: " + error.what());
  }
}

fs::path CreateRunFolder(const fs::path& logFolder) {
  return CreateNumberedFolder(logFolder, "run");
}

fs::path ReprojectedImage(const fs::path& folder, const std::string& photograph) {
  const std::string name = photograph.substr(photograph.find_last_of('\\') + 1);
  return folder / fs::u8path("Reproject_" + name);
}

bool StaysInFolder(const std::string& photograph) {
  const fs::path image = ReprojectedImage({}, photograph);
  return std::find(image.begin(), image.end(), "..") == image.end();
}

void CreateReprojectedImageFolders(const fs::path& folder,
                                   const std::vector<std::string>& photographs) {
  for (const std::string& photograph : photographs) {
    try {
      fs::create_directories(ReprojectedImage(folder, photograph).parent_path());
    } catch (const std::system_error&) {
      // Nor can every name be a path on every system.
    }
  }
}

std::vector<fs::path> FindReprojectedImages(const fs::path& folder,
                                            const std::vector<std::string>& photographs) {
  std::vector<fs::path> images;
  for (const std::string& photograph : photographs) {
    const fs::path image = ReprojectedImage(folder, photograph);
    if (IsWholePicture(image)) {
      images.push_back(image);
    }
  }
  return images;
}

LibraryData PrepareData(const fs::path& data, const std::vector<DataRow>& rows,
                        const fs::path& workingFolder, const fs::path& runFolder) {
  LibraryData prepared = {data, {}};
  const bool worksThere = WorksIn(workingFolder);
  bool serves = rows == ReadDataFile(data);
  std::string copy = "Time,photograph,and both trackers\n";
  for (const DataRow& row : rows) {
    prepared.photographs.push_back(NameForLibrary(row, workingFolder, worksThere));
    serves = serves && prepared.photographs.back() == row.photograph;
    copy += WithPhotograph(row, prepared.photographs.back()) + '\n';
  }
  if (!serves) {
    prepared.file = runFolder / kConvertedData;
    WriteFile(prepared.file, copy);
  }
  return prepared;
}

LibraryRun RunLibrary(const Inputs& inputs, const std::vector<DataRow>& rows,
                      const Mounting& mounting, const std::filesystem::path& folder,
                      const ProgressListener& listener) {
  LibraryRun run;
  run.folder = folder;
  const LibraryData data = PrepareData(inputs.data, rows, inputs.workingFolder, folder);
  CreateReprojectedImageFolders(folder, data.photographs);
  LogFollower follower(folder, data.photographs, listener);
  try {
    run.code = CallLibrary(inputs, mounting, data, folder, run.outputs);
  } catch (const std::exception& exception) {
    run.exception = OneLine(exception.what());
  }
  run.record = follower.Stop();
  run.log = follower.Log();
  run.images = FindReprojectedImages(folder, data.photographs);
  NameAsGiven(run.record.photographs, rows);
  run.lostImages = LostImages(run, data);
  if (!run.code) {
    run.stoppedAt = StoppedAt(run.record, rows);
  }
  return run;
}

}  // namespace trackedcam::host
