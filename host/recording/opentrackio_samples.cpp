#include "host/recording/opentrackio_samples.h"

#include <cmath>

#include <Eigen/Geometry>
#include <nlohmann/json.hpp>

#include "host/input/input_error.h"
#include "host/recording/stamp.h"
#include "host/text/files.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

const Json& Member(const Json& json, const char* key) {
  static const Json kNone;
  const auto found = json.is_object() ? json.find(key) : json.end();
  return found == json.end() ? kNone : *found;
}

std::int64_t TimeOf(const Json& sample) {
  const Json& stamp = Member(Member(sample, "timing"), "sampleTimestamp");
  const Json& seconds = Member(stamp, "seconds");
  const Json& nanoseconds = Member(stamp, "nanoseconds");
  if (!seconds.is_number_integer() || !nanoseconds.is_number_integer()) {
    throw InputError(
        "the sample has no timing.sampleTimestamp with seconds and nanoseconds, the only time that "
        "is read");
  }
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  constexpr std::int64_t kMostSeconds = kMostNanoseconds / kPerSecond - 5;  // 2^32 ns are 4.3 s
  constexpr std::int64_t kMostParts = std::int64_t{1} << 32;
  const auto isWithin = [](const Json& number, std::int64_t most) {
    return number.is_number_unsigned() &&
           number.get<std::uint64_t>() < static_cast<std::uint64_t>(most);
  };
  if (!isWithin(seconds, kMostSeconds) || !isWithin(nanoseconds, kMostParts)) {
    throw InputError("timing.sampleTimestamp is out of range");
  }
  return seconds.get<std::int64_t>() * kPerSecond + nanoseconds.get<std::int64_t>();
}

std::optional<Eigen::Vector3d> NumbersOf(const Json& json, const char* first, const char* second,
                                         const char* third) {
  Eigen::Vector3d numbers;
  int i = 0;
  for (const char* key : {first, second, third}) {
    const Json& number = Member(json, key);
    if (!number.is_number()) {
      return std::nullopt;
    }
    numbers[i++] = number.get<double>();
  }
  return numbers;
}

void RequireNoScale(const Json& transform) {
  const Json& scale = Member(transform, "scale");
  if (!scale.is_null() && NumbersOf(scale, "x", "y", "z") != Eigen::Vector3d::Ones()) {
    throw InputError(
        "a transform has a scale other than 1, which the pose of a tracker cannot have");
  }
}

std::optional<Eigen::Isometry3d> TransformOf(const Json& transform) {
  constexpr double kRadians = EIGEN_PI / 180;
  RequireNoScale(transform);
  const auto metres = NumbersOf(Member(transform, "translation"), "x", "y", "z");
  const auto degrees = NumbersOf(Member(transform, "rotation"), "pan", "tilt", "roll");
  if (!metres || !degrees) {
    return std::nullopt;
  }
  const Eigen::Vector3d angles = *degrees * kRadians;
  return Eigen::Translation3d(*metres) * Eigen::AngleAxisd(angles[0], Eigen::Vector3d::UnitZ()) *
         Eigen::AngleAxisd(angles[1], Eigen::Vector3d::UnitX()) *
         Eigen::AngleAxisd(angles[2], Eigen::Vector3d::UnitY());
}

std::optional<crosscheck::TrackerPose> PoseOf(const Json& transforms) {
  if (!transforms.is_array() || transforms.empty()) {
    return std::nullopt;
  }
  Eigen::Isometry3d product = Eigen::Isometry3d::Identity();
  for (const Json& transform : transforms) {
    const auto next = TransformOf(transform);
    if (!next) {
      return std::nullopt;
    }
    product = product * *next;
  }
  const Eigen::Quaterniond rotation(product.linear());
  return crosscheck::TrackerPose{product.translation(),
                                 {rotation.w(), rotation.x(), rotation.y(), rotation.z()}};
}

Json ParseSample(std::string_view line) {
  try {
    Json sample = ParseJson<Json>(std::string(line));
    if (sample.is_object()) {
      return sample;
    }
  } catch (const std::exception&) {  // said below
  }
  throw InputError("not a JSON object: a file of OpenTrackIO has one sample on each line");
}

}  // namespace

std::optional<StampedPose> OpenTrackIoSamples::Read(std::string_view line) {
  const Json sample = ParseSample(line);
  const std::string source = JsonText({Member(sample, "sourceId"), Member(sample, "sourceNumber")});
  if (!source_) {
    source_ = source;
  } else if (source != *source_) {
    throw InputError(
        "the sample has another sourceId or sourceNumber than the first: write the samples of each "
        "tracker to a separate file");
  }
  const std::int64_t time = TimeOf(sample);
  const auto pose = PoseOf(Member(sample, "transforms"));
  return pose ? std::optional<StampedPose>({time, *pose}) : std::nullopt;
}

}  // namespace trackedcam::host
