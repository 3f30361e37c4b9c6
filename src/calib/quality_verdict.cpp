#include "calib/quality_verdict.h"

#include <algorithm>
#include <array>

#include "core/number_text.h"
#include "core/precision.h"

namespace trackedcam {

ResultCode Quality_Verdict(RunLog log, float normError, float normErrorWarning,
                           float normErrorFailure, const Transform& Mean_Transform_Cam_Tc,
                           const std::vector<Eigen::Vector3f>& translations, float spreadWarning,
                           float spreadFailure) {
  WriteRunLogLine(log, "Norm Reprojection error : " + ToSixDecimals(normError));

  const Eigen::Vector3f mean = Mean_Transform_Cam_Tc.topRightCorner<3, 1>().cast<float>();
  std::array<FloatSum, 3> sums;
  for (const Eigen::Vector3f& translation : translations) {
    for (int axis = 0; axis < 3; ++axis) {
      sums[axis].AddSquare(translation[axis] - mean[axis]);
    }
  }
  const float stdX = sums[0].RootOfMean(translations.size());
  const float stdY = sums[1].RootOfMean(translations.size());
  const float stdZ = sums[2].RootOfMean(translations.size());
  const float maxStd = std::max(std::max(stdX, stdY), stdZ);
  WriteRunLogLine(log, "T_STD : " + ToSixDecimals(stdX) + ", " + ToSixDecimals(stdY) + ", " +
                           ToSixDecimals(stdZ) + " meter.");
  WriteRunLogLine(log, "Max T_STD : " + ToSixDecimals(maxStd) + " meter.");

  const auto compare = [](const std::string& what, float figure, float limit) {
    return what + ToSixDecimals(figure) + " > " + ToSixDecimals(limit) + " )";
  };
  // The spread is judged first: a warning about it hides an error that would fail.
  if (maxStd > spreadFailure) {
    WriteRunLogLine(log, compare("T_STD too large. ( ", maxStd, spreadFailure));
    return LogError(log, result::kTranslationSpreadTooLarge);
  }
  if (maxStd > spreadWarning) {
    WriteRunLogLine(log, compare("Recalibration recommended. ( T_STD ", maxStd, spreadWarning));
    return LogError(log, result::kRecalibrationRecommended);
  }
  if (normError > normErrorFailure) {
    WriteRunLogLine(log, compare("Reprojection error too large. ( ", normError, normErrorFailure));
    return LogError(log, result::kReprojectionErrorTooLarge);
  }
  if (normError > normErrorWarning) {
    WriteRunLogLine(log, compare("Recalibration recommended. ( Reprojection error ", normError,
                                 normErrorWarning));
    return LogError(log, result::kRecalibrationRecommended);
  }
  return result::kSuccess;
}

}  // namespace trackedcam
