// The tracker data file as the library reads it: which rows, and which photographs.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::host {

struct DataRow {
  std::size_t line = 0;    // counted from 1
  std::string text;        // without the line's end
  std::string photograph;  // the second field as written; empty where there is none
};

inline bool operator==(const DataRow& a, const DataRow& b) {
  return a.line == b.line && a.text == b.text;
}

/// The lines that the library takes for rows.
std::vector<DataRow> ReadRows(const std::string& content);

/// The whole file.
/// @throws InputError when the file cannot be read, is none, is far larger than any shoot's or has
///         more than a million lines.
std::string ReadDataContent(const std::filesystem::path& data);

/// The rows of the file.
/// @throws InputError when there is no row.
void RequireRows(const std::filesystem::path& data, const std::vector<DataRow>& rows);

/// @throws InputError as ReadDataContent and RequireRows do.
std::vector<DataRow> ReadDataFile(const std::filesystem::path& data);

/// The row with another path in its second field.
std::string WithPhotograph(const DataRow& row, const std::string& photograph);

}  // namespace trackedcam::host
