#include "host/input/data_file.h"

#include <algorithm>
#include <system_error>

#include "host/input/input_error.h"
#include "host/text/file_text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

// A hundred thousand rows are 30 MB.
constexpr std::uintmax_t kMostBytes = 256 << 20;
constexpr std::size_t kMostRows = 1000000;

struct Line {
  std::string text;
  bool isEnded;  // by a line feed; only then a carriage return is part of the end
};

std::vector<Line> SplitLines(const std::string& content) {
  std::vector<Line> lines;
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = content.find('\n', begin);
    const bool isEnded = end != std::string::npos;
    lines.push_back({content.substr(begin, isEnded ? end - begin : end), isEnded});
    begin = isEnded ? end + 1 : content.size();
  }
  return lines;
}

// Every byte-order mark in use has two to four bytes.
void RemoveByteOrderMark(std::string& firstLine) {
  const std::size_t header = firstLine.find("Time,");
  if (header >= 2 && header <= 4) {
    firstLine.erase(0, header);
  }
}

std::string PhotographIn(const std::string& row) {
  const std::size_t comma = row.find(',');
  if (comma == std::string::npos) {
    return {};
  }
  return row.substr(comma + 1, row.find(',', comma + 1) - comma - 1);
}

void RequirePlainFile(const fs::path& data) {
  std::error_code error;
  if (!fs::exists(data, error)) {
    throw InputError("there is no tracker data file " + data.u8string());
  }
  if (!fs::is_regular_file(data, error)) {
    throw InputError(data.u8string() + " is no file, so it cannot be the tracker data");
  }
  if (fs::file_size(data, error) > kMostBytes) {
    throw InputError(data.u8string() + " is far larger than the tracker data of any shoot");
  }
}

// Before the lines are taken apart: that takes many times the memory of the file.
void RequireFewLines(const fs::path& data, const std::string& content) {
  const auto lines = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
  if (lines > kMostRows) {
    throw InputError(data.u8string() + " goes on after row " + std::to_string(kMostRows) +
                     ", far more rows than any shoot has");
  }
}

}  // namespace

std::vector<DataRow> ReadRows(const std::string& content) {
  std::vector<DataRow> rows;
  std::size_t number = 0;
  for (Line& line : SplitLines(content)) {
    std::string& text = line.text;
    if (line.isEnded && !text.empty() && text.back() == '\r') {
      text.pop_back();
    }
    if (++number == 1) {
      RemoveByteOrderMark(text);
    }
    if (text.empty() || text.front() != 'T') {
      rows.push_back({number, text, PhotographIn(text)});
    }
  }
  return rows;
}

std::string ReadDataContent(const fs::path& data) {
  RequirePlainFile(data);
  try {
    std::string content = ReadFile(data);
    RequireFewLines(data, content);
    return content;
  } catch (const InputError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw InputError(error.what());
  }
}

void RequireRows(const fs::path& data, const std::vector<DataRow>& rows) {
  if (rows.empty()) {
    throw InputError(data.u8string() +
                     " has no row: record one row of tracker data for each photograph");
  }
}

std::vector<DataRow> ReadDataFile(const fs::path& data) {
  std::vector<DataRow> rows = ReadRows(ReadDataContent(data));
  RequireRows(data, rows);
  return rows;
}

std::string WithPhotograph(const DataRow& row, const std::string& photograph) {
  const std::size_t begin = row.text.find(',');
  if (begin == std::string::npos) {
    return row.text;
  }
  const std::size_t end = row.text.find(',', begin + 1);
  const std::string rest = end == std::string::npos ? "" : row.text.substr(end);
  return row.text.substr(0, begin + 1) + photograph + rest;
}

}  // namespace trackedcam::host
