// What is wrong with a tracker data file. The library reads 0 for what is no number and says
// nothing; a shoot then ends far from where it went wrong.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/finding.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

/// What is wrong with, or doubtful in, a tracker data file; the worst first. Rows go by their line
/// in the file, counted from 1. One finding for each fault, however many rows have it.
/// @param content The whole file.
/// @param rows ReadRows of it.
std::vector<Finding> CheckData(const std::string& content, const std::vector<DataRow>& rows);

/// @throws InputError where the file cannot be read or has no row, with what is wrong with it.
void RequireData(const std::filesystem::path& data);

}  // namespace trackedcam::host
