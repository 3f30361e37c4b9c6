#include "handeye/chart_tracker_transform.h"

#include "handeye/transform_mean.h"

namespace trackedcam {

ResultCode Calculate_Transform_Chart_Tr(RunLog log, Transform& Mean_Transform_Chart_Tr,
                                        const TransformList& Transform_Cam_Chart_all,
                                        const Transform& Mean_Transform_Cam_Tc,
                                        const TransformList& Transform_Base_Tc_all,
                                        const TransformList& Transform_Tr_Base_all) {
  Mean_Transform_Chart_Tr = Transform::Identity();
  const std::size_t count = Transform_Cam_Chart_all.size();
  if (count != Transform_Tr_Base_all.size() ||
      Transform_Tr_Base_all.size() != Transform_Base_Tc_all.size()) {
    const auto logSize = [&](const std::string& name, const TransformList& list) {
      WriteRunLogLine(log, "Size of " + name + " : " + std::to_string(list.size()));
    };
    logSize("Transform_Cam_Chart_all", Transform_Cam_Chart_all);
    logSize("Transform_Tr_Base_all", Transform_Tr_Base_all);
    logSize("Transform_Base_Tc_all", Transform_Base_Tc_all);
    return LogError(log, result::kChartTrListsDiffer);
  }
  std::vector<Eigen::Quaternionf> rotations;
  Eigen::Vector3f sum = Eigen::Vector3f::Zero();
  for (std::size_t i = 0; i < count; ++i) {
    const Transform Transform_Chart_Tr =
        InverseTransform(Transform_Cam_Chart_all[i]) * Mean_Transform_Cam_Tc *
        InverseTransform(Transform_Base_Tc_all[i]) * InverseTransform(Transform_Tr_Base_all[i]);
    rotations.push_back(RotationAsFloats(log, Transform_Chart_Tr));
    sum += TranslationAsFloats(Transform_Chart_Tr);
  }
  Mean_Transform_Chart_Tr = TransformMean(rotations, sum, Transform_Tr_Base_all.size());
  LogTransform(log, "Mean_Transform_Chart_Tr : ", Mean_Transform_Chart_Tr);
  return result::kSuccess;
}

}  // namespace trackedcam
