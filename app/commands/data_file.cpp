#include "app/commands/data_file.h"

#include <fstream>

#include <CLI/CLI.hpp>

namespace trackedcam::app {
namespace {

// Only the carriage return of a line end goes: the last line has no line end.
bool GetLine(std::istream& data, std::string& line) {
  if (!std::getline(data, line)) {
    return false;
  }
  if (!data.eof() && !line.empty() && line.back() == '\r') {
    line.pop_back();
  }
  return true;
}

// Every byte-order mark in use has two to four bytes.
void RemoveByteOrderMark(std::string& firstLine) {
  const std::size_t header = firstLine.find("Time,");
  if (header >= 2 && header <= 4) {
    firstLine.erase(0, header);
  }
}

std::string PhotographPath(const std::string& row) {
  const std::size_t comma = row.find(',');
  if (comma == std::string::npos) {
    return {};
  }
  return row.substr(comma + 1, row.find(',', comma + 1) - comma - 1);
}

}  // namespace

std::vector<std::string> ReadPhotographPaths(std::istream& data) {
  std::vector<std::string> paths;
  bool isFirst = true;
  for (std::string line; GetLine(data, line); isFirst = false) {
    if (isFirst) {
      RemoveByteOrderMark(line);
    }
    if (line.empty() || line.front() != 'T') {
      paths.push_back(PhotographPath(line));
    }
  }
  return paths;
}

std::vector<std::string> ReadPhotographPaths(const std::filesystem::path& dataPath) {
  std::ifstream data(dataPath, std::ios::binary);
  if (!data || std::filesystem::is_directory(dataPath)) {
    throw CLI::ValidationError("--data", "cannot read " + dataPath.u8string());
  }
  std::vector<std::string> paths = ReadPhotographPaths(data);
  if (paths.empty()) {
    throw CLI::ValidationError("--data", dataPath.u8string() +
                                             " has no row: record one row of "
                                             "tracker data for each photograph");
  }
  return paths;
}

}  // namespace trackedcam::app
