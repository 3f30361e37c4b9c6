#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/run/calibration_outputs.h"
#include "host/run/run_log.h"

namespace trackedcam::host {

/// Creates a folder for one run: run_001, run_002 and so on, the next one that is not there. Two
/// runs never share one, so that the library's log in it is that of this run alone.
/// @param logFolder Created when missing.
/// @throws InputError where nothing can be written: without a log there is no record of a run.
std::filesystem::path CreateRunFolder(const std::filesystem::path& logFolder);

/// The same with another word than run: shoot_001.
std::filesystem::path CreateNumberedFolder(const std::filesystem::path& logFolder,
                                           const std::string& word);

// Where the library writes the photographs with the predicted corners.

/// The name follows the photograph's path as the data file has it, folders and all: the library
/// takes what follows the last backslash.
std::filesystem::path ReprojectedImage(const std::filesystem::path& folder,
                                       const std::string& photograph);

/// False where the name could lead out of the folder, up through "..".
bool StaysInFolder(const std::string& photograph);

/// Creates the folders that the names need, since the library creates none. Where that fails the
/// run goes on without the image. Every name must stay in the folder.
void CreateReprojectedImageFolders(const std::filesystem::path& folder,
                                   const std::vector<std::string>& photographs);

/// Those that were written whole.
std::vector<std::filesystem::path> FindReprojectedImages(
    const std::filesystem::path& folder, const std::vector<std::string>& photographs);

// The data file and the names that the library is given for a run.

/// The copy's name in the folder of the run.
constexpr const char* kConvertedData = "tracker_data.csv";

struct LibraryData {
  std::filesystem::path file;            // the one given, where it serves as it is
  std::vector<std::string> photographs;  // one for each row, as the file names it
};

/// A copy of the data file is written into the folder of the run where the one given does not
/// serve: where rows are left out or converted, where relative photographs begin elsewhere than the
/// process works, or where the name of a photograph would lead its reprojected image out of the
/// folder. In the copy such a photograph stands by its absolute path.
/// @param data The file given.
/// @param rows Those to calibrate with.
LibraryData PrepareData(const std::filesystem::path& data, const std::vector<DataRow>& rows,
                        const std::filesystem::path& workingFolder,
                        const std::filesystem::path& runFolder);

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
