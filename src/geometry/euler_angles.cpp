#include "geometry/euler_angles.h"

#include <cmath>

#include "core/number_text.h"
#include "core/precision.h"

namespace trackedcam {
namespace {

constexpr float kLockUE = 0.4999995F;
constexpr double kLockAximmetry = 0.9999987;

// 1 - 2 * (a² + b²), in double precision.
double CosineTerm(float a, float b) {
  return 1 - 2 * (std::pow(a, 2.0) + std::pow(b, 2.0));
}

// The same in single precision.
float CosineTermSingle(float a, float b) {
  return 1 - 2 * (a * a + b * b);
}

}  // namespace

ResultCode QuatToEulerUE(RunLog log, const Quaternion& quaternion, EulerAngles& angles) {
  const Eigen::Vector4f q = quaternion.coeffs().cast<float>();
  const float x = q[0];
  const float y = q[1];
  const float z = q[2];
  const float w = q[3];

  const float singularity = z * x - w * y;
  if (singularity < -kLockUE || singularity > kLockUE) {
    WriteRunLogLine(log, "Encountered Gimbal lock : ");
    WriteRunLogLine(log, "SingularityTest : " + ToSixDecimals(singularity));
    WriteRunLogLine(
        log, "x : " + ToSixDecimals(x) + ", y : " + ToSixDecimals(y) + ", z : " + ToSixDecimals(z));
    return LogError(log, result::kGimbalLock);
  }
  const float pitch = std::asin(2 * singularity) * kDegreesPerRadianSingle;
  const float yaw = std::atan2(2 * (w * z + x * y), static_cast<float>(CosineTerm(y, z))) *
                    kDegreesPerRadianSingle;
  // Only the numerator is in single precision.
  const double rollNumerator = -2 * (z * y + w * x);
  const auto roll =
      static_cast<float>(std::atan2(rollNumerator, CosineTerm(x, y)) * kRoundedDegreesPerRadian);
  angles = {roll, pitch, yaw};
  return result::kSuccess;
}

ResultCode QuatToEulerAximmetry(RunLog log, const Quaternion& quaternion, EulerAngles& angles) {
  const Eigen::Vector4f q = quaternion.coeffs().cast<float>();
  const float x = q[0];
  const float y = q[1];
  const float z = q[2];
  const float w = q[3];

  const float sine = 2 * (w * x - z * y);
  if (std::abs(static_cast<double>(sine)) > kLockAximmetry) {
    WriteRunLogLine(log, "Encountered Gimbal lock");
    const float rest =
        std::atan2(2 * (z * x - w * y), CosineTermSingle(z, y)) * kDegreesPerRadianSingle;
    angles = sine > 0 ? EulerAngles{-90, -0.0F, -rest} : EulerAngles{90, -0.0F, rest};
    return result::kSuccess;
  }
  angles[0] = static_cast<float>(-std::asin(sine) / kShortPi * 180.0);
  angles[1] = -std::atan2(2 * (w * y + z * x), CosineTermSingle(y, x)) * kDegreesPerRadianSingle;
  angles[2] = -std::atan2(2 * (w * z + y * x), CosineTermSingle(z, x)) * kDegreesPerRadianSingle;
  return result::kSuccess;
}

}  // namespace trackedcam
