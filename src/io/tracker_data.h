// The tracker data file: comma-separated text with one row for each photograph.

#pragma once

#include <string>
#include <vector>

#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Appends each row's photograph path and its record. Missing or malformed numbers read as 0, as
/// atof reads them; lines that begin with "T" are headers.
/// Returns 0, 1 (the file cannot be opened) or 15 (a row has the wrong form).
/// @throws std::range_error("bad conversion") when the path is not UTF-8.
ResultCode ReadTrackerData(RunLog log, const std::string& dataPath,
                           std::vector<std::string>& imagePaths,
                           std::vector<TrackerRecord>& records);

/// Moves a record to the list. Returns 15 when it does not hold exactly 15 numbers.
ResultCode AppendRecord(RunLog log, TrackerRecord& record, std::vector<TrackerRecord>& records);

}  // namespace trackedcam
