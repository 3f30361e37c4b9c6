// The exports of the library, with angles in single precision, compared with placements in double
// precision that share no formula with them.

#include <cmath>
#include <iostream>

#include "fuzz/fuzz.h"
#include "host/engines/placement.h"
#include "host/engines/unity.h"
#include "host/engines/unreal.h"
#include "tests/host/engine_arithmetic.h"
#include "trackedcam/trackedcam.h"

namespace {

using namespace trackedcam;
using host::arithmetic::DegreesBetween;
using List = std::vector<double>;

constexpr double kDegrees = 0.05;              // the error of single precision near gimbal lock
constexpr double kCentimetres = 2e-4;          // metres and centimetres are rounded, below 18 m
constexpr const char* kNowhere = "/dev/null";  // a log folder in which no file can be created

// A rotation from four numbers, and a translation below 10 metres along each axis.
List Transform(fuzz::Bytes& bytes) {
  Eigen::Quaterniond rotation(bytes.Number(), bytes.Number(), bytes.Number(), bytes.Number());
  if (!(rotation.norm() > 1e-3) || !(rotation.norm() < 1e6)) {
    rotation.setIdentity();
  }
  const Eigen::Matrix3d matrix = rotation.normalized().toRotationMatrix();
  List transform;
  for (int row = 0; row < 3; ++row) {
    transform.insert(transform.end(), {matrix(row, 0), matrix(row, 1), matrix(row, 2)});
    const double metres = bytes.Number();
    transform.push_back(std::abs(metres) < 10 ? metres : 0);
  }
  transform.insert(transform.end(), {0, 0, 0, 1});
  return transform;
}

void RequireNear(const List& a, const List& b, double tolerance, const char* what) {
  fuzz::Require(a.size() == b.size(), what);
  for (std::size_t i = 0; i < a.size(); ++i) {
    fuzz::Require(std::abs(a[i] - b[i]) <= tolerance, what);
  }
}

// Near gimbal lock, single precision cannot separate roll and yaw.
bool IsNearGimbalLock(double degrees) {
  return std::abs(std::abs(degrees) - 90) < 1;
}

void CheckUE4(const List& transform) {
  List rotation, translation;
  const int code = CamAxisToUE4(transform, rotation, translation, kNowhere);
  const host::UnrealValues expected = host::ToUnreal({{{}, {}, {}, {}, transform, {}, {}}, {}, ""});
  fuzz::Require(code == 0 || (code == 3 && IsNearGimbalLock(expected.rotationDeg[1])),
                "gimbal lock of UE4");
  if (code == 0) {
    RequireNear(translation, expected.locationCm, kCentimetres, "location of UE4");
    const auto axes = host::arithmetic::FRotator(rotation[0], rotation[1], rotation[2]);
    const auto& angles = expected.rotationDeg;
    if (!IsNearGimbalLock(angles[1])) {
      fuzz::Require(DegreesBetween(axes, host::arithmetic::FRotator(angles[0], angles[1],
                                                                    angles[2])) < kDegrees,
                    "rotation of UE4");
    }
  }
}

// Both exports give quaternions in right-handed axes, so one plain formula checks them.
void CheckUE5(const List& transform, int (*convert)(List, List&, List&, std::string),
              const Eigen::Matrix3d& fromReported, const Eigen::Matrix3d& axesAtCamera) {
  List quaternion, translation;
  fuzz::Require(convert(transform, quaternion, translation, kNowhere) == 0, "code of UE5");
  const host::CameraPlacement expected =
      host::InEngineAxes(host::PlacementInReportedAxes(transform), fromReported, axesAtCamera);
  const Eigen::Vector3d centimetres = expected.position * 100;
  RequireNear(translation, {centimetres.x(), centimetres.y(), centimetres.z()}, 1e-6,
              "translation of UE5");
  fuzz::Require(DegreesBetween(host::arithmetic::Quaternion(quaternion), expected.rotation) < 1e-3,
                "rotation of UE5");
}

Eigen::Matrix3d Rows(std::initializer_list<double> numbers) {
  Eigen::Matrix3d matrix;
  int i = 0;
  for (const double number : numbers) {
    matrix(i / 3, i % 3) = number;
    ++i;
  }
  return matrix;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::cout.rdbuf(nullptr);
  fuzz::Bytes bytes(data, size);
  const List transform = Transform(bytes);
  CheckUE4(transform);
  // Right, down, forward along the reported -x, -y, z.
  CheckUE5(transform, CamAxisToUE5, Rows({-1, 0, 0, 0, -1, 0, 0, 0, 1}),
           Eigen::Matrix3d::Identity());
  // Up, forward, left along the reported y, z, x.
  CheckUE5(transform, CamAxisToUE5_ExportxN, Rows({0, 1, 0, 0, 0, 1, 1, 0, 0}),
           Rows({0, 0, -1, -1, 0, 0, 0, 1, 0}));
  List fov, centre, rotation, translation;
  const double value = bytes.Number();
  const double focal = std::isfinite(value) ? 0.3 + std::abs(std::remainder(value, 4)) : 1;
  CamAxisToAximmetry({focal, focal}, {0.5, 0.5}, transform, fov, centre, rotation, translation,
                     kNowhere);
  fuzz::Require(std::abs(fov.at(0) - 2 * std::atan(0.5 / focal) * 180 / 3.14159265358979) < 1e-6,
                "field of view");
  for (const double centimetres : translation) {
    fuzz::Require(std::isfinite(centimetres), "a translation is not finite");
  }

  // Arbitrary numbers are refused or accepted; they never cause a crash.
  List any;
  for (int i = 0; i < 16; ++i) {
    any.push_back(bytes.Number());
  }
  any.resize(bytes.Take<std::uint8_t>() % 18);
  List one, two;
  CamAxisToUE4(any, one, two, kNowhere);
  one.clear();
  two.clear();
  CamAxisToUE5(any, one, two, kNowhere);
  if (host::IsPlacement(any)) {
    host::ToUnreal({{{}, {}, {}, {}, any, {}, {}}, {}, ""});
    host::ToUnity({{{}, {}, {}, {}, any, {}, {}}, {}, ""});
  }
  return 0;
}
