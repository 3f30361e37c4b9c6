// The run log of one exported call: a text file in the host's folder, echoed to standard output.

#pragma once

#include <string>

namespace trackedcam {

/// Holds only the path, so that every stage can have a copy. The file is opened for each line.
struct RunLog {
  std::wstring path;
};

/// Sets the path of the log: a name with the local time in the folder (UTF-8). Creates no file and
/// no folder.
/// @throws std::range_error("bad conversion") if the folder is not UTF-8.
void OpenRunLog(RunLog& log, const std::string& folder);

/// Appends the local time, a tab and the message to the file and to standard output. If the file
/// cannot be written, the line goes to standard output only.
void WriteRunLogLine(const RunLog& log, const std::string& message);

/// For key "now" the time stamp of a line, for key "date" the time in the name of a log; empty for
/// any other key.
std::string FormatLocalTime(const std::string& key);

}  // namespace trackedcam
