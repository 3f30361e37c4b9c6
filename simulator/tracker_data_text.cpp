#include "simulator/tracker_data_text.h"

#include "simulator/number_text.h"

namespace trackedcam::simulator {
namespace {

constexpr const char* kHeader =
    "Time,Photograph,"
    "Tc x,Tc y,Tc z,Tc qw,Tc qx,Tc qy,Tc qz,"
    "Tr x,Tr y,Tr z,Tr qw,Tr qx,Tr qy,Tr qz";
constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";
constexpr double kSecondsBetweenPhotographs = 2.5;

// The tracking system has axes of its own on each tracker: x and x point opposite ways, and y and z
// are exchanged and point opposite ways.
Eigen::Isometry3d InReportedAxes(const Eigen::Isometry3d& pose) {
  Eigen::Matrix3d axes;
  axes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  Eigen::Isometry3d reported = pose;
  reported.linear() = pose.linear() * axes;
  return reported;
}

std::string PoseText(const Eigen::Isometry3d& pose, bool invertedQuaternion) {
  const Eigen::Isometry3d reported = InReportedAxes(pose);
  Eigen::Quaterniond rotation(reported.linear());
  if (invertedQuaternion) {
    rotation = rotation.conjugate();
  }
  const Eigen::Vector3d position = reported.translation();
  std::string text;
  for (const double number : {position.x(), position.y(), position.z(), rotation.w(), rotation.x(),
                              rotation.y(), rotation.z()}) {
    text += ',' + ToFixedText(number, 12);
  }
  return text;
}

}  // namespace

std::string TrackerDataText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const std::string lineEnd = options.windowsLineEnds ? "\r\n" : "\n";
  std::string text = (options.byteOrderMark ? kByteOrderMark : "") + (kHeader + lineEnd);
  double seconds = 0;
  for (const Photograph& photograph : shoot.photographs) {
    text += ToFixedText(seconds, 3) + ',' + photograph.path +
            PoseText(photograph.trackedTc, options.invertedQuaternions) +
            PoseText(photograph.trackedTr, options.invertedQuaternions) + lineEnd;
    seconds += kSecondsBetweenPhotographs;
  }
  return text;
}

}  // namespace trackedcam::simulator
