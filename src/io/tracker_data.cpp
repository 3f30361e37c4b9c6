#include "io/tracker_data.h"

#include <array>
#include <sstream>

#include "core/console.h"
#include "core/number_text.h"
#include "core/platform.h"
#include "core/utf8.h"

namespace trackedcam {
namespace {

constexpr std::size_t kFields = 16;
constexpr std::size_t kPathField = 1;

std::string ReadAll(std::FILE* file) {
  std::string content;
  std::array<char, 1 << 16> block = {};
  while (const std::size_t length = std::fread(block.data(), 1, block.size(), file)) {
    content.append(block.data(), length);
  }
  return content;
}

// Reads a line without its line feed and without a carriage return before that. Any other carriage
// return is text.
bool GetLine(std::istream& content, std::string& line) {
  if (!std::getline(content, line)) {
    return false;
  }
  const bool endsWithLineFeed = !content.eof();
  if (endsWithLineFeed && !line.empty() && line.back() == '\r') {
    line.pop_back();
  }
  return true;
}

void RemoveByteOrderMark(std::string& firstLine) {
  const auto startsAt = [&](std::size_t offset) {
    return firstLine.compare(offset, 5, "Time,") == 0;
  };
  if (startsAt(0)) {
    return;
  }
  for (const std::size_t offset : {2, 3, 4}) {
    if (offset <= firstLine.size() && startsAt(offset)) {
      firstLine.erase(0, offset);
      return;
    }
  }
}

// Missing fields are empty.
std::array<std::string, kFields> Split(const std::string& line) {
  std::array<std::string, kFields> fields;
  std::istringstream stream(line);
  for (std::string& field : fields) {
    std::getline(stream, field, ',');
  }
  return fields;
}

}  // namespace

ResultCode AppendRecord(RunLog log, TrackerRecord& record, std::vector<TrackerRecord>& records) {
  if (record.size() != record::kLength) {
    WriteRunLogLine(log, "Tracker data format error!");
    WriteRunLogLine(log, "Detect the tracker data size : " + std::to_string(record.size()));
    return LogError(log, result::kDataFileFormat);
  }
  records.push_back(std::move(record));
  record.clear();
  return result::kSuccess;
}

ResultCode ReadTrackerData(RunLog log, const std::string& dataPath,
                           std::vector<std::string>& imagePaths,
                           std::vector<TrackerRecord>& records) {
  const File file = OpenFile(WideFromUtf8(dataPath), "rb");
  if (!file) {
    return LogError(log, result::kDataFileNotOpened);
  }
  imagePaths.reserve(5000);
  records.reserve(5000);

  std::istringstream content(ReadAll(file.get()));
  bool isFirst = true;
  for (std::string line; GetLine(content, line); isFirst = false) {
    if (isFirst) {
      RemoveByteOrderMark(line);
    }
    Print("str_line:" + line + '\n');
    if (!line.empty() && line.front() == 'T') {
      continue;
    }
    TrackerRecord record;
    const auto fields = Split(line);
    for (std::size_t i = 0; i < kFields; ++i) {
      if (i == kPathField) {
        imagePaths.push_back(fields[i]);
      } else {
        record.push_back(ParseLeadingNumber(fields[i]));
      }
    }
    if (const ResultCode code = AppendRecord(log, record, records)) {
      return code;
    }
  }
  return result::kSuccess;
}

}  // namespace trackedcam
