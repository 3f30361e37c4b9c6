#pragma once

#include <filesystem>
#include <string>

namespace trackedcam::host {

/// Creates a folder for one run: run_001, run_002 and so on, the next one that is not there. Two
/// runs never share one, so that the library's log in it is that of this run alone.
/// @param logFolder Created when missing.
/// @throws InputError where nothing can be written: without a log there is no record of a run.
std::filesystem::path CreateRunFolder(const std::filesystem::path& logFolder);

/// The same with another word than run: shoot_001.
std::filesystem::path CreateNumberedFolder(const std::filesystem::path& logFolder,
                                           const std::string& word);

}  // namespace trackedcam::host
