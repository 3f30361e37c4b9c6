#include "geometry/axis_change.h"

#include <optional>

namespace trackedcam {
namespace {

// out = result * inverse(camera * T * tracker), with T = Transform_Cam_Tc, mirrored first for a
// left-handed engine. A matrix that an engine does not need is left out: a product with the
// identity would make negative zeros positive.
struct AxisChange {
  bool changesHand = false;
  std::optional<Transform> camera = {};
  std::optional<Transform> tracker = {};
  std::optional<Transform> result = {};
};

Transform Axes(const Eigen::RowVector3d& x, const Eigen::RowVector3d& y,
               const Eigen::RowVector3d& z) {
  Eigen::Matrix3d rotation;
  rotation << x, y, z;
  return MakeTransform(rotation, Eigen::Vector3d::Zero());
}

AxisChange UE4() {
  return {
      true, Axes({0, 0, -1}, {1, 0, 0}, {0, -1, 0}), {}, Axes({0, -1, 0}, {1, 0, 0}, {0, 0, 1})};
}

AxisChange UE5() {
  return {false, {}, Axes({1, 0, 0}, {0, 0, -1}, {0, 1, 0}), {}};
}

AxisChange UE5xN() {
  return {
      false, Axes({0, -1, 0}, {0, 0, 1}, {-1, 0, 0}), {}, Axes({0, 0, -1}, {0, -1, 0}, {-1, 0, 0})};
}

AxisChange Aximmetry() {
  return {
      true, Axes({1, 0, 0}, {0, -1, 0}, {0, 0, -1}), {}, Axes({1, 0, 0}, {0, 0, 1}, {0, -1, 0})};
}

Transform Apply(const RunLog& log, const AxisChange& change, const Transform& Transform_Cam_Tc) {
  Transform transform = Transform_Cam_Tc;
  if (change.changesHand) {
    ChangeHand(log, Transform_Cam_Tc, transform);
  }
  if (change.camera) {
    transform = *change.camera * transform;
  }
  if (change.tracker) {
    transform = transform * *change.tracker;
  }
  transform = InverseTransform(transform);
  return change.result ? Transform(*change.result * transform) : transform;
}

}  // namespace

ResultCode AxisChangeUE4(RunLog log, const Transform& Transform_Cam_Tc, Transform& out) {
  out = Apply(log, UE4(), Transform_Cam_Tc);
  WriteRunLogLine(log, "I Change Hand.");
  WriteRunLogLine(log, "I Transform_Tc_UE4Cam.");
  WriteRunLogLine(log, "I Transform_Tc_Cam_inUE4.");
  return result::kSuccess;
}

ResultCode AxisChangeUE5(RunLog log, const Transform& Transform_Cam_Tc, Transform& out) {
  out = Apply(log, UE5(), Transform_Cam_Tc);
  return result::kSuccess;
}

ResultCode AxisChangeUE5xN(RunLog log, const Transform& Transform_Cam_Tc, Transform& out) {
  out = Apply(log, UE5xN(), Transform_Cam_Tc);
  return result::kSuccess;
}

ResultCode AxisChangeAximmetry(RunLog log, const Transform& Transform_Cam_Tc, Transform& out) {
  out = Apply(log, Aximmetry(), Transform_Cam_Tc);
  return result::kSuccess;
}

}  // namespace trackedcam
