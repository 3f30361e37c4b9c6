#include "handeye/pose_sets.h"

#include <algorithm>
#include <sstream>

#include <opencv2/calib3d.hpp>
#include <opencv2/core/eigen.hpp>

#include "core/console.h"
#include "core/precision.h"
#include "geometry/quaternion.h"

namespace trackedcam {
namespace {

// The reported x, y, z of a tracker count as -x, -z, -y in the solving stages. Built from the
// angles, because the truncated pi shows in the last digits.
Transform MakeTrackerAxisFix() {
  const Quaternion rotation = QuaternionFromAnglesXyz({kShortPi / 2, 0, kShortPi});
  return MakeTransform(RotationFromQuaternion(rotation), Eigen::Vector3d::Zero());
}

Transform NominalChartTracker(const std::vector<double>& rotationDeg,
                              const std::vector<double>& translation) {
  const Eigen::Vector3d angles = Eigen::Map<const Eigen::Vector3d>(rotationDeg.data()) * kShortPi;
  const Quaternion rotation = QuaternionFromAnglesXyz(angles / 180.0);
  const Transform Transform_Tr_Chart = MakeTransform(
      RotationFromQuaternion(rotation), Eigen::Map<const Eigen::Vector3d>(translation.data()));
  return InverseTransform(Transform_Tr_Chart);
}

Eigen::Matrix3d TrackerRotation(const TrackerRecord& record, std::size_t first,
                                bool Flag_ModifyQuat) {
  Quaternion quaternion(record[first], record[first + 1], record[first + 2], record[first + 3]);
  if (Flag_ModifyQuat) {
    quaternion = quaternion.conjugate();
  }
  quaternion.normalize();
  return RotationFromQuaternion(quaternion);
}

Eigen::Vector3d TrackerPosition(const TrackerRecord& record, std::size_t first) {
  return {record[first], record[first + 1], record[first + 2]};
}

Transform ChartPose(const cv::Vec3d& rotationVector, const cv::Vec3d& translation) {
  cv::Matx33d rotation;
  cv::Rodrigues(rotationVector, rotation);
  Eigen::Matrix3d block;
  cv::cv2eigen(rotation, block);
  return MakeTransform(block, {translation[0], translation[1], translation[2]});
}

// Extends a view to this number of rows, as far as its underlying matrix has them. An empty view
// stays empty.
cv::Mat WithRowsBehind(const cv::Mat& view, std::size_t rows) {
  cv::Mat whole = view;
  const int missing = static_cast<int>(rows) - view.rows;
  return view.empty() || missing <= 0 ? whole : whole.adjustROI(0, missing, 0, 0);
}

// The classic locale keeps the digits independent of the host's.
void PrintMatrix(const Eigen::Matrix3d& matrix) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << matrix << '\n';
  Print(text.str());
}

}  // namespace

Transform ApplyTrackerAxisFix(const Transform& trackerPose) {
  return InverseTransform(MakeTrackerAxisFix() * InverseTransform(trackerPose));
}

ResultCode OrganizeRT(RunLog log, TransformList& Transform_Base_Tc_all,
                      TransformList& Transform_Tr_Base_all, Transform& Transform_Chart_Tr,
                      TransformList& Transform_Cam_Chart_all, const cv::Mat& Rot_Cam_Chart_vec,
                      const cv::Mat& Trans_Cam_Chart_vec,
                      const std::vector<double>& chartTrackerRotation,
                      const std::vector<double>& chartTrackerTranslation,
                      const std::vector<TrackerRecord>& records, bool Flag_ModifyQuat) {
  Transform_Chart_Tr = NominalChartTracker(chartTrackerRotation, chartTrackerTranslation);
  WriteRunLogLine(log, "Transform_Chart_Tr successful.");

  // The poses can be views with fewer rows than there are records. Row i belongs to record i.
  const cv::Mat rotations = WithRowsBehind(Rot_Cam_Chart_vec, records.size());
  const cv::Mat translations = WithRowsBehind(Trans_Cam_Chart_vec, records.size());
  const int count = std::min({static_cast<int>(records.size()), rotations.rows, translations.rows});
  for (int i = 0; i < count; ++i) {
    const TrackerRecord& record = records[static_cast<std::size_t>(i)];
    const Eigen::Matrix3d chartTracker =
        TrackerRotation(record, record::kTrQuaternion, Flag_ModifyQuat);
    const Eigen::Matrix3d cameraTracker =
        TrackerRotation(record, record::kTcQuaternion, Flag_ModifyQuat);
    PrintMatrix(chartTracker);

    const Transform Transform_Base_Tr = ApplyTrackerAxisFix(
        MakeTransform(chartTracker, TrackerPosition(record, record::kTrPosition)));
    const Transform Transform_Base_Tc = ApplyTrackerAxisFix(
        MakeTransform(cameraTracker, TrackerPosition(record, record::kTcPosition)));
    Transform_Base_Tc_all.push_back(Transform_Base_Tc);
    Transform_Tr_Base_all.push_back(InverseTransform(Transform_Base_Tr));
    Transform_Cam_Chart_all.push_back(
        ChartPose(rotations.at<cv::Vec3d>(i), translations.at<cv::Vec3d>(i)));
  }
  return result::kSuccess;
}

}  // namespace trackedcam
