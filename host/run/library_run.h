// One call of the library, seen from outside.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/run/calibration_outputs.h"
#include "host/run/run_log_reader.h"

namespace trackedcam::host {

struct LibraryRun {
  std::optional<int> code;  // nothing if an exception ended the call
  std::string exception;    // its message
  CalibrationOutputs outputs;
  RunRecord record;  // one photograph for each row, as the data file names it
  std::filesystem::path folder;
  std::filesystem::path log;                  // empty if the library could not write one
  std::vector<std::filesystem::path> images;  // reprojected, one for each row; empty: none
  std::vector<std::string> missingImages;     // photographs that should have one
  std::string stoppedAt;  // where an exception ended the call, such as "row 7, photos/a.jpg"
};

/// Whether the log says how the call ended, so that the record holds all of it. A full disk cuts
/// the log, and the call goes on.
bool HasCompleteRecord(const LibraryRun& run);

/// Calls the library on this thread and follows its log. The library itself writes to the standard
/// output of the process as well; nothing here reads or changes that.
/// @param rows Those to calibrate with. The library reads a copy of them in `folder`.
/// @param mounting What the library is given, stated or not.
/// @param folder For data, log and images of this run alone.
/// @param listener Called on another thread.
/// @throws std::runtime_error if the copy cannot be written.
LibraryRun RunLibrary(const Inputs& inputs, const std::vector<DataRow>& rows,
                      const Mounting& mounting, const std::filesystem::path& folder,
                      const ProgressListener& listener);

}  // namespace trackedcam::host
