// The data file and the names that the library is given for a run.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/input/data_file.h"

namespace trackedcam::host {

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

}  // namespace trackedcam::host
