// The input of a calibration: the board, the photographs and their records.

#pragma once

#include <string>
#include <vector>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// The board's inner corners in frame Chart; empty for a board without rows or columns.
BoardTemplate MakeBoardTemplate(const RunLog& log, int boardCols, int boardRows, double squareSize);

/// @return 0, or 2 if photographs and records differ in number.
ResultCode CheckRecords(const RunLog& log, const std::vector<std::string>& imagePaths,
                        const std::vector<TrackerRecord>& records);

}  // namespace trackedcam
