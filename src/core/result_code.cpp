#include "core/result_code.h"

#include <map>

namespace trackedcam {
namespace {

const std::map<ResultCode, std::string> ResultMessageTable = {
    {0, "No error"},
    {1, "The raw data csv file path is wrong."},
    {2, "The amount of Tracker data and images do not match."},
    {3, "Encountered Gimbal lock."},
    {4, "Amount of valid images < 12."},
    {5, "Camera calibration failed, reporjection too large. (> 1.5 pixel)"},
    {6, "Camera tracker calibration failed, Translation STD too large. (> 1.5cm)"},
    {7, "Data size is not same in Cal_Reproj_Error."},
    {8, "Data size is not same in Calculate_Transform_Cam_Tc."},
    {9, "Norm_Vec size is not correct."},
    {10, "Dot_Vec size is not correct."},
    {11, "RT_Filt_Outlier output size is not same."},
    {12, "Data size is not same in Calculate_Transform_Chart_Tr"},
    {13, "Filtered data not enough (<2)"},
    {14, "Reprojection error too large (>18 pixel in 1080p)"},
    {15, "Tracker data format error in csv file. Please re-calibration again!"},
    {16, ""},
    {99, "Recalibration is recommended."},
    {100, "DoF Near calculation error, Near > ObjectDistance."},
};

// Programs that read logs expect a blank before the colon for these codes.
bool HasBlankBeforeColon(ResultCode code) {
  return code == 1 || code == 2 || code == 3 || code == 15;
}

}  // namespace

std::string LookupResultMessage(ResultCode code) {
  const auto entry = ResultMessageTable.find(code);
  return entry == ResultMessageTable.end() ? std::string() : entry->second;
}

ResultCode LogError(const RunLog& log, ResultCode code, const std::string& detail) {
  WriteRunLogLine(log, "Error code " + std::to_string(code) +
                           (HasBlankBeforeColon(code) ? " : " : ": ") + LookupResultMessage(code) +
                           detail);
  return code;
}

}  // namespace trackedcam
