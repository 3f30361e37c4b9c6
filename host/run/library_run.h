#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/run/calibration_outputs.h"
#include "host/run/run_log_reader.h"
#include "host/run/run_record.h"

namespace trackedcam::host {

/// One call of the library, as it is seen from outside.
struct LibraryRun {
  std::optional<int> code;  // nothing where an exception left the call
  std::string exception;    // what it said
  CalibrationOutputs outputs;
  RunRecord record;  // the photographs by the names in the data file given
  std::filesystem::path folder;
  std::filesystem::path log;                  // empty when the library could not write one
  std::vector<std::filesystem::path> images;  // the reprojected ones that were written whole
  std::vector<std::string> lostImages;        // photographs whose image was not
  std::string stoppedAt;  // where an exception left the call, such as "row 7, photos/a.jpg"
};

/// Calls the library on this thread and follows its log. The library itself writes to the process's
/// standard output as well; nothing here reads or changes that.
/// @param rows Those of inputs.data to calibrate with.
/// @param mounting Instead of that of the inputs.
/// @param folder For log and images, of this run alone.
/// @param listener Called on another thread.
LibraryRun RunLibrary(const Inputs& inputs, const std::vector<DataRow>& rows,
                      const Mounting& mounting, const std::filesystem::path& folder,
                      const ProgressListener& listener);

}  // namespace trackedcam::host
