#pragma once

#include <filesystem>

namespace trackedcam::host {

/// Creates a folder for one run: run_001, run_002 and so on, the next one that is not there. Two
/// runs never share one, so that the library's log in it is that of this run alone.
/// @param logFolder Created when missing.
/// @throws InputError where nothing can be written: without a log there is no record of a run.
std::filesystem::path CreateRunFolder(const std::filesystem::path& logFolder);

}  // namespace trackedcam::host
