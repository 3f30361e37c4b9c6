// What the program itself reads of the tracker data file: how many rows, and which photographs.

#pragma once

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace trackedcam::app {

/// The path of the photograph in each row, as written; empty where a row has none.
std::vector<std::string> ReadPhotographPaths(std::istream& data);

/// @throws CLI::ValidationError when the file cannot be read or has no row.
std::vector<std::string> ReadPhotographPaths(const std::filesystem::path& dataPath);

}  // namespace trackedcam::app
