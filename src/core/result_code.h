// The result codes that every stage and every exported function returns.

#pragma once

#include <cstdint>
#include <string>

#include "core/run_log.h"

namespace trackedcam {

using ResultCode = std::int32_t;

namespace result {

constexpr ResultCode kSuccess = 0;
constexpr ResultCode kDataFileNotOpened = 1;
constexpr ResultCode kRecordsAndImagesDiffer = 2;
constexpr ResultCode kGimbalLock = 3;
constexpr ResultCode kTooFewImages = 4;
constexpr ResultCode kLensErrorTooLarge = 5;
constexpr ResultCode kTranslationSpreadTooLarge = 6;
constexpr ResultCode kReprojectionListsDiffer = 7;
constexpr ResultCode kCamTcListsDiffer = 8;
constexpr ResultCode kNormVecSize = 9;
constexpr ResultCode kDotVecSize = 10;
constexpr ResultCode kFilteredListsDiffer = 11;
constexpr ResultCode kChartTrListsDiffer = 12;
constexpr ResultCode kTooFewFiltered = 13;
constexpr ResultCode kReprojectionErrorTooLarge = 14;
constexpr ResultCode kDataFileFormat = 15;
constexpr ResultCode kRecalibrationRecommended = 99;

/// Wrong use by the host: an input list is too short. This code has no message.
constexpr ResultCode kInputTooShort = -1;

}  // namespace result

/// The fixed message of a code; empty for a code without a message.
std::string LookupResultMessage(ResultCode code);

/// Writes the error line, "Error code" with the code and its message, and returns the code.
ResultCode LogError(const RunLog& log, ResultCode code, const std::string& detail = "");

}  // namespace trackedcam
