// A shoot that was continued, so that its rows are in several data files.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/input/inputs.h"

namespace trackedcam::host {

/// The folder at which relative paths of photographs begin if the user sets none.
/// @throws InputError if the data files are in several folders.
std::filesystem::path FolderOfData(const std::filesystem::path& data,
                                   const std::vector<std::filesystem::path>& moreData);

/// The content of all data files as that of one: lines are counted on through them, headers
/// included.
/// @param inputs Data files and working folder are used.
/// @throws InputError if a file cannot be read, or is not of the shoot of the first one: another
/// header, other fields, another unit, photographs of another size, or photographs that an earlier
/// file has.
std::string ContinuedContent(const Inputs& inputs);

}  // namespace trackedcam::host
