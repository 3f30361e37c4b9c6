#include "host/run/library_run.h"

#include <algorithm>
#include <string>

#include "host/input/image_header.h"
#include "host/run/run_folder.h"
#include "host/run/run_log_reader.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

int CallLibrary(const Inputs& inputs, const Mounting& mounting, const RunData& data,
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

// Messages are parts of sentences.
std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The log has a line before each step, so its last lines show where the call ended.
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

// One for each row; empty where the image is missing or cut short.
std::vector<fs::path> CompleteImages(const RunData& data) {
  std::vector<fs::path> images;
  for (const fs::path& image : data.images) {
    images.push_back(IsCompleteImage(image) ? image : fs::path());
  }
  return images;
}

// Of the photographs that the second pass went through, if there was one.
std::vector<std::string> PhotographsWithoutImage(const LibraryRun& run) {
  std::vector<std::string> missing;
  const std::vector<Photograph>& photographs = run.record.photographs;
  if (run.outputs.transformCamTc.empty() || photographs.size() != run.images.size()) {
    return missing;
  }
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    if (!photographs[i].dropped && run.images[i].empty()) {
      missing.push_back(photographs[i].path);
    }
  }
  return missing;
}

// The library may have been given absolute paths.
void NameAsGiven(std::vector<Photograph>& photographs, const std::vector<DataRow>& rows) {
  for (std::size_t i = 0; i < photographs.size() && i < rows.size(); ++i) {
    photographs[i].path = rows[i].photograph;
  }
}

}  // namespace

// The last line of a complete log says how the call ended, except after an exception or wrong use.
bool HasCompleteRecord(const LibraryRun& run) {
  if (!run.code || *run.code < 0) {
    return true;
  }
  return *run.code == 0 ? run.record.isSuccessful : run.record.errorCode == run.code;
}

LibraryRun RunLibrary(const Inputs& inputs, const std::vector<DataRow>& rows,
                      const Mounting& mounting, const std::filesystem::path& folder,
                      const ProgressListener& listener) {
  LibraryRun run;
  run.folder = folder;
  const RunData data = WriteRunData(rows, inputs.workingFolder, folder);
  WriteRunConfig(inputs, inputs.mounting, folder);
  LogFollower follower(folder, data.photographs, listener);
  try {
    run.code = CallLibrary(inputs, mounting, data, folder, run.outputs);
  } catch (const std::exception& exception) {
    run.exception = OneLine(exception.what());
  }
  run.record = follower.Stop();
  run.log = follower.Log();
  run.images = CompleteImages(data);
  NameAsGiven(run.record.photographs, rows);
  run.missingImages = PhotographsWithoutImage(run);
  if (!run.code) {
    run.stoppedAt = StoppedAt(run.record, rows);
  }
  return run;
}

}  // namespace trackedcam::host
