#include "api/calibration_input.h"

#include "core/number_text.h"

namespace trackedcam {

BoardTemplate MakeBoardTemplate(const RunLog& log, int boardCols, int boardRows,
                                double squareSize) {
  BoardTemplate boardTemplate;
  WriteRunLogLine(log, "CALIBRATION BOARD INDEX START");
  for (int r = 0; r < boardRows; ++r) {
    for (int c = 0; c < boardCols; ++c) {
      const double x = c * squareSize;
      const double y = r * squareSize;
      boardTemplate.emplace_back(static_cast<float>(x), static_cast<float>(y), 0.0F);
      WriteRunLogLine(log, ToSixDecimals(x) + " " + ToSixDecimals(y) + " 0");
    }
  }
  WriteRunLogLine(log, "CALIBRATION BOARD INDEX END");
  return boardTemplate;
}

ResultCode CheckRecords(const RunLog& log, const std::vector<std::string>& imagePaths,
                        const std::vector<TrackerRecord>& records) {
  if (imagePaths.size() != records.size()) {
    return LogError(log, result::kRecordsAndImagesDiffer);
  }
  WriteRunLogLine(log, "Read the csv file successfully.");
  return result::kSuccess;
}

}  // namespace trackedcam
