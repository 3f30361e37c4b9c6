#include "handeye/outlier_filter.h"

#include <cmath>
#include <cstdint>

#include "core/number_text.h"
#include "core/per_photograph.h"
#include "core/precision.h"
#include "handeye/rotation_axis.h"
#include "handeye/transform_mean.h"

namespace trackedcam {
namespace {

constexpr float kRotationLimitDeg = 0.5F;
constexpr float kTranslationLimitFactor = 1.3F;
constexpr int kLeastPairs = 2;

// The difference between a photograph's transform and the mean.
struct Deviation {
  float rotationDeg;            // between the rotation axes
  Eigen::Vector3f translation;  // metres
};

ResultCode MeasureDeviations(const RunLog& log, const TransformList& Transform_Cam_Tc_all,
                             const Transform& Mean_Transform_Cam_Tc,
                             std::vector<Deviation>& deviations) {
  cv::Mat Mean_Rot_Cam_Tc_vec;
  if (const ResultCode code = RotationAxis(log, Mean_Transform_Cam_Tc, Mean_Rot_Cam_Tc_vec)) {
    return code;
  }
  const Eigen::Vector3f meanTranslation = TranslationAsFloats(Mean_Transform_Cam_Tc);
  for (const Transform& Transform_Cam_Tc : Transform_Cam_Tc_all) {
    cv::Mat Rot_Cam_Tc_vec;
    if (const ResultCode code = RotationAxis(log, Transform_Cam_Tc, Rot_Cam_Tc_vec)) {
      return code;
    }
    float product = 0;
    if (const ResultCode code = Dot_Vec(log, product, Rot_Cam_Tc_vec, Mean_Rot_Cam_Tc_vec)) {
      return code;
    }
    // Not clamped: if rounding makes the product larger than 1, the angle is NaN and the photograph
    // is kept.
    const auto rotationDeg = static_cast<float>(std::acos(product) / kShortPi * 180.0);
    WriteRunLogLine(log, "Diff R in image " + std::to_string(deviations.size()) + " : " +
                             ToSixDecimals(rotationDeg) + " degree.");
    deviations.push_back({rotationDeg, TranslationAsFloats(Transform_Cam_Tc) - meanTranslation});
  }
  return result::kSuccess;
}

// The root mean square of each deviation over all photographs.
Deviation SpreadOf(const std::vector<Deviation>& deviations) {
  FloatSum rotation;
  FloatSum x;
  FloatSum y;
  FloatSum z;
  for (const Deviation& deviation : deviations) {
    rotation.AddSquare(deviation.rotationDeg);
    x.AddSquare(deviation.translation.x());
    y.AddSquare(deviation.translation.y());
    z.AddSquare(deviation.translation.z());
  }
  const std::size_t count = deviations.size();
  return {rotation.RootOfMean(count),
          {x.RootOfMean(count), y.RootOfMean(count), z.RootOfMean(count)}};
}

// The indices in ascending order. NaN exceeds no limit.
std::vector<std::int32_t> FindOutliers(const std::vector<Deviation>& deviations,
                                       const Eigen::Vector3f& limit) {
  std::vector<std::int32_t> outliers;
  for (std::size_t i = 0; i < deviations.size(); ++i) {
    const Eigen::Vector3f& translation = deviations[i].translation;
    if (deviations[i].rotationDeg > kRotationLimitDeg || std::abs(translation.x()) > limit.x() ||
        std::abs(translation.y()) > limit.y() || std::abs(translation.z()) > limit.z()) {
      outliers.push_back(static_cast<std::int32_t>(i));
    }
  }
  return outliers;
}

}  // namespace

ResultCode RT_Filt_Outlier(RunLog log, TransformList& Transform_Cam_Tc_all,
                           const Transform& Mean_Transform_Cam_Tc,
                           std::vector<std::vector<cv::Point2f>>& ImageCoordinate,
                           std::vector<std::string>& Image_name,
                           TransformList& Transform_Tr_Base_all,
                           TransformList& Transform_Base_Tc_all,
                           TransformList& Transform_Cam_Chart_all) {
  std::vector<Deviation> deviations;
  if (const ResultCode code =
          MeasureDeviations(log, Transform_Cam_Tc_all, Mean_Transform_Cam_Tc, deviations)) {
    return code;
  }
  const Deviation spread = SpreadOf(deviations);
  WriteRunLogLine(log, "STD_R : " + ToSixDecimals(spread.rotationDeg) + " degree.");
  WriteRunLogLine(log, "STD_T : " + ToSixDecimals(spread.translation.x()) + ", " +
                           ToSixDecimals(spread.translation.y()) + ", " +
                           ToSixDecimals(spread.translation.z()) + " meter.");

  const std::vector<std::int32_t> outliers =
      FindOutliers(deviations, kTranslationLimitFactor * spread.translation);
  const std::size_t remaining = deviations.size() - outliers.size();
  WriteRunLogLine(log, "Remove outlier data number : " + std::to_string(outliers.size()));
  WriteRunLogLine(log, "Size list : (init) " + std::to_string(deviations.size()));
  if (remaining < kLeastPairs) {
    WriteRunLogLine(log, "Filtered data number not enough : " + std::to_string(remaining) +
                             " <= " + std::to_string(kLeastPairs));
    return LogError(log, result::kTooFewFiltered);
  }

  // From last to first, so that the remaining indices stay valid.
  for (auto outlier = outliers.rbegin(); outlier != outliers.rend(); ++outlier) {
    const auto index = static_cast<std::size_t>(*outlier);
    WriteRunLogLine(log, "Remove index : " + std::to_string(index));
    WriteRunLogLine(log, "Remove name : " + Image_name.at(index));
    RemovePhotograph(index, Transform_Cam_Tc_all, ImageCoordinate, Image_name,
                     Transform_Tr_Base_all, Transform_Base_Tc_all, Transform_Cam_Chart_all);
  }

  const std::size_t size = Transform_Cam_Tc_all.size();
  if (ImageCoordinate.size() != size || Image_name.size() != size ||
      Transform_Tr_Base_all.size() != size || Transform_Base_Tc_all.size() != size ||
      Transform_Cam_Chart_all.size() != size) {
    const auto logSize = [&](const std::string& name, const auto& list) {
      WriteRunLogLine(log, name + " : " + std::to_string(list.size()));
    };
    WriteRunLogLine(log, "RT_Filt_Outlier output size is not same");
    WriteRunLogLine(log, "Size list : (Filt)");
    logSize("Transform_Cam_Tc_all", Transform_Cam_Tc_all);
    logSize("ImageCoordinate", ImageCoordinate);
    logSize("Image_name", Image_name);
    logSize("Transform_Tr_Base_all", Transform_Tr_Base_all);
    logSize("Transform_Base_Tc_all", Transform_Base_Tc_all);
    logSize("Transform_Cam_Chart_all", Transform_Cam_Chart_all);
    return LogError(log, result::kFilteredListsDiffer);
  }
  WriteRunLogLine(log, "Size list : (init) " + std::to_string(size));
  return result::kSuccess;
}

}  // namespace trackedcam
