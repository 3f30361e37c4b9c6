// The record of one exported call: a text file in the host's folder, echoed to standard output.

#pragma once

#include <string>

namespace trackedcam {

/// Holds only the path, so that every stage can have a copy; the file is opened for each line.
struct RunLog {
  std::wstring path;
};

/// Names the log after the local time, below a folder given in UTF-8. No file or folder is created.
/// @throws std::range_error("bad conversion") when the folder is not UTF-8.
void OpenRunLog(RunLog& log, const std::string& folder);

/// Appends the local time, a tab and the message to the file and to standard output. A file that
/// cannot be written is passed over in silence.
void WriteRunLogLine(const RunLog& log, const std::string& message);

/// Key "now": the time stamp of a line; key "date": the part of a log's name; else empty.
std::string FormatLocalTime(const std::string& key);

}  // namespace trackedcam
