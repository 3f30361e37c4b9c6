#include "handeye/camera_tracker_transform.h"

#include "handeye/transform_mean.h"

namespace trackedcam {

ResultCode Calculate_Transform_Cam_Tc(
    RunLog log, Transform& Mean_Transform_Cam_Tc, TransformList& Transform_Cam_Tc_all,
    std::vector<Eigen::Quaternionf>& rotations, std::vector<Eigen::Vector3f>& translations,
    const TransformList& Transform_Cam_Chart_all, const Transform& Transform_Chart_Tr,
    const TransformList& Transform_Tr_Base_all, const TransformList& Transform_Base_Tc_all) {
  Transform_Cam_Tc_all.clear();
  rotations.clear();
  translations.clear();
  const std::size_t count = Transform_Cam_Chart_all.size();
  if (count != Transform_Tr_Base_all.size() ||
      Transform_Tr_Base_all.size() != Transform_Base_Tc_all.size()) {
    return LogError(log, result::kCamTcListsDiffer);
  }
  Eigen::Vector3f sum = Eigen::Vector3f::Zero();
  for (std::size_t i = 0; i < count; ++i) {
    const Transform Transform_Cam_Tc = Transform_Cam_Chart_all[i] * Transform_Chart_Tr *
                                       Transform_Tr_Base_all[i] * Transform_Base_Tc_all[i];
    Transform_Cam_Tc_all.push_back(Transform_Cam_Tc);
    rotations.push_back(RotationAsFloats(log, Transform_Cam_Tc));
    translations.push_back(TranslationAsFloats(Transform_Cam_Tc));
    sum += translations.back();
  }
  Mean_Transform_Cam_Tc = TransformMean(rotations, sum, translations.size());
  LogTransform(log, "Mean_Transform_Cam_Tc : ", Mean_Transform_Cam_Tc);
  return result::kSuccess;
}

}  // namespace trackedcam
