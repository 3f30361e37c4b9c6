// The folder of one run: what the library is given, and where it writes.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/input/data_file.h"
#include "host/input/inputs.h"

namespace trackedcam::host {

/// Creates the next folder that does not exist yet: run_001, run_002 and so on. Two runs never
/// share one, so the log in it is that of this run alone. Folders without a file, of runs that were
/// killed before they began, are removed first.
/// @param logFolder Created if missing.
/// @throws InputError if nothing can be written there: without a log there is no record of a run.
std::filesystem::path CreateRunFolder(const std::filesystem::path& logFolder);

/// The same with another word: shoot_001.
std::filesystem::path CreateNumberedFolder(const std::filesystem::path& logFolder,
                                           const std::string& word);

/// The data file that the library reads. Each list has one element for each row.
struct RunData {
  std::filesystem::path file;
  std::vector<std::string> photographs;       // as the file names them
  std::vector<std::filesystem::path> images;  // where the library writes the reprojected photograph
};

/// Writes the rows into the run's folder, so that what was checked is what is calibrated, whatever
/// becomes of the file that they came from; and the folders of the images, since the library
/// creates none. A photograph gets its absolute path if the library would not find it by its name,
/// or if the name would lead the image out of the folder.
/// @throws InputError if an absolute path has a comma or a line ending, which end a field.
/// @throws std::runtime_error if the file cannot be written.
RunData WriteRunData(const std::vector<DataRow>& rows, const std::filesystem::path& workingFolder,
                     const std::filesystem::path& runFolder);

/// Writes calibrate.toml, which calibrates the rows of the run's folder again, without anything
/// beside it but the photographs.
/// @param mounting As the library takes it; nothing: to be found from the shoot.
/// @throws std::runtime_error if the file cannot be written.
void WriteRunConfig(const Inputs& inputs, const std::optional<Mounting>& mounting,
                    const std::filesystem::path& runFolder);

}  // namespace trackedcam::host
