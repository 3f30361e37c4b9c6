// What a calibration starts from: the board, and photographs and records that belong together.

#pragma once

#include <string>
#include <vector>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// The board's inner corners in the chart's frame; empty for a board without rows or columns.
BoardTemplate MakeBoardTemplate(const RunLog& log, int boardCols, int boardRows, double squareSize);

/// Returns 0, or 2 when the numbers of photographs and of records differ.
ResultCode CheckRecords(const RunLog& log, const std::vector<std::string>& imagePaths,
                        const std::vector<TrackerRecord>& records);

}  // namespace trackedcam
