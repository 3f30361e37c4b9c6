// Recordings of a tracker: read by rising time, or refused with a message.

#include <cmath>

#include "fuzz/fuzz.h"
#include "host/input/input_error.h"
#include "host/recording/pose_formats.h"

namespace {

using namespace trackedcam;

// The first byte chooses what is stated of the file.
host::PoseFormat FormatOf(std::uint8_t choice) {
  host::PoseFormat format;
  if (choice % 2 == 1) {
    format.columns = host::ParsePoseColumns("time=Time,x=X,y=Y,z=Z,qw=QW,qx=QX,qy=QY,qz=QZ");
    format.timeUnit = host::TimeUnit::kMilliseconds;
  } else if (choice % 4 == 2) {
    format.kind = static_cast<host::PoseFileKind>(choice / 4 % 4);
  }
  return format;
}

void Check(const host::PoseRecording& recording) {
  fuzz::Require(recording.poses.size() >= 2, "number of poses");
  fuzz::Require(std::isfinite(recording.firstStamp), "first stamp");
  double before = -1;
  for (const host::TimedPose& pose : recording.poses) {
    fuzz::Require(pose.seconds >= 0 && pose.seconds >= before, "rising times");
    fuzz::Require(pose.pose.position.allFinite() && pose.pose.quaternionWxyz.allFinite() &&
                      pose.pose.quaternionWxyz != Eigen::Vector4d::Zero(),
                  "a pose");
    before = pose.seconds;
  }
}

// The number as text is a time as well, and the same to the nanosecond.
void CheckTime(std::string_view text) {
  const auto nanoseconds = host::ParseNanoseconds(text, host::TimeUnit::kNanoseconds);
  if (nanoseconds) {
    fuzz::Require(host::ParseNanoseconds(std::to_string(*nanoseconds),
                                         host::TimeUnit::kNanoseconds) == nanoseconds,
                  "a time");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string_view content = fuzz::TextOf(data + 1, size - 1);
  try {
    Check(host::ReadPoseRecording(fuzz::FileWith(content, "poses"), FormatOf(data[0])));
  } catch (const host::InputError& error) {
    fuzz::Require(error.what() != std::string(), "an error without a message");
  }
  try {
    host::ParsePoseColumns(std::string(content));
  } catch (const host::InputError& error) {
    fuzz::Require(error.what() != std::string(), "an error without a message");
  }
  CheckTime(content);
  return 0;
}
