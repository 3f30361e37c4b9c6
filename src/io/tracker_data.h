// The tracker data file: comma-separated text with one row for each photograph.

#pragma once

#include <string>
#include <vector>

#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Appends the photograph's path and the record of each row. Numbers are read like atof: missing
/// and malformed ones are 0. Lines that begin with "T" are headers and are skipped.
/// @return 0, 1 (the file cannot be opened) or 15 (a row has the wrong form).
/// @throws std::range_error("bad conversion") if dataPath is not UTF-8.
ResultCode ReadTrackerData(RunLog log, const std::string& dataPath,
                           std::vector<std::string>& imagePaths,
                           std::vector<TrackerRecord>& records);

/// Moves a record to the end of the list.
/// @return 0, or 15 if the record does not have 15 numbers.
ResultCode AppendRecord(RunLog log, TrackerRecord& record, std::vector<TrackerRecord>& records);

}  // namespace trackedcam
