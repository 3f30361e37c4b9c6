#include "host/engines/unity.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "engine_arithmetic.h"
#include "set_in_engine.h"

namespace trackedcam::host {
namespace {

using arithmetic::Pose;
using Eigen::Matrix3d;
using Eigen::Vector3d;
using testing::ElementsAre;

constexpr const char* kRightUpForward = "x,-y,z";
constexpr double kTolerance = 1e-6;  // metres, degrees

ExportInput InputOf(const Instant& instant, const std::string& parentAxes = "") {
  return {instant.Calibration(), std::array<double, 2>{36, 20}, parentAxes};
}

void ExpectSame(const Pose& actual, const Pose& expected) {
  EXPECT_LT((actual.position - expected.position).norm(), kTolerance);
  EXPECT_LT(arithmetic::DegreesBetween(actual.axes, expected.axes), kTolerance);
}

struct Parent {
  std::string typed;
  std::string axes;
};

class UnityTest : public testing::TestWithParam<Parent> {};

TEST_P(UnityTest, PutsTheCameraWhereItIs) {
  const unsigned seed = 20261121;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int round = 0; round < 40; ++round) {
    const Instant instant(random);
    const UnityValues values = ToUnity(InputOf(instant, GetParam().typed));
    EXPECT_EQ(values.parentAxes, GetParam().axes);
    const Vector3d position = arithmetic::VectorOf(values.localPosition);
    const std::vector<double>& a = values.localEulerAngles;
    for (const char* world : {"-x,y,z", "x,y,-z", "z,-x,y"}) {
      const Pose transform = instant.Component(world, GetParam().axes, 1);
      const Pose camera = instant.Camera(world, kRightUpForward, 1);
      ExpectSame(Below(transform, {arithmetic::UnityEuler(a[0], a[1], a[2]), position}), camera);
      ExpectSame(Below(transform, {arithmetic::Quaternion(values.localRotationXyzw), position}),
                 camera);
    }
  }
}

std::string TestName(const testing::TestParamInfo<Parent>& parent) {
  return std::to_string(parent.index);
}
INSTANTIATE_TEST_SUITE_P(ParentAxes, UnityTest,
                         testing::Values(Parent{"", "-x,y,z"}, Parent{"-x,y,z", "-x,y,z"},
                                         Parent{"z-forward", "-x,y,z"}, Parent{"x,y,-z", "x,y,-z"},
                                         Parent{"minus-z-forward", "x,y,-z"},
                                         Parent{"z,-x,y", "z,-x,y"}, Parent{"x,z,y", "x,z,y"}),
                         TestName);

TEST(Unity, LooksStraightUpAndDown) {
  for (const double x : {90.0, -90.0, 90 - 1e-7}) {
    const Matrix3d axes = arithmetic::UnityEuler(x, 40, -15);
    std::mt19937 random(1);
    Instant instant(random);
    const Matrix3d reported = AxesOf("-x,y,z").transpose() * axes * AxesOf(kRightUpForward);
    Matrix3d fix;
    fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
    instant.Transform_Cam_Tc.topLeftCorner<3, 3>() = (fix * reported).transpose();
    const std::vector<double> a = ToUnity(InputOf(instant)).localEulerAngles;
    EXPECT_LT(arithmetic::DegreesBetween(arithmetic::UnityEuler(a[0], a[1], a[2]), axes),
              kTolerance)
        << x;
  }
}

// Unity's frustum of a physical camera with gate fit None: as wide as the sensor seen over the
// focal length, moved right and up by the lens shift in parts of the sensor. (0, 0) is the bottom
// left of the viewport.
TEST(Unity, ShowsAPointWhereThePhotographDoes) {
  std::mt19937 random(1);
  const UnityLens lens = ToUnity(InputOf(Instant(random))).lens.value();
  const double f = lens.values.focalLengthMm;
  for (const auto& [x, y] : {std::pair(0.2, -0.1), {-0.4, 0.3}, {0.0, 0.0}}) {
    const double u = 0.9 * 1920 * x + 0.51 * 1920;
    const double v = 1.6 * 1080 * y + 0.48 * 1080;
    EXPECT_NEAR(0.5 + f * x / lens.values.filmbackMm[0] - lens.lensShift[0], (u + 0.5) / 1920,
                1e-12);
    EXPECT_NEAR(0.5 + f * -y / lens.values.filmbackMm[1] - lens.lensShift[1], 1 - (v + 0.5) / 1080,
                1e-12);
  }
}

TEST(Unity, JsonHasTheKeysOfTheEngine) {
  std::mt19937 random(1);
  ExportInput input = InputOf(Instant(random));
  const auto json = UnityJson(ToUnity(input));
  EXPECT_EQ(json["parentAxes"], "-x,y,z");
  EXPECT_EQ(json["localPosition"].size(), 3U);
  EXPECT_EQ(json["localRotationXyzw"].size(), 4U);
  EXPECT_EQ(json["localEulerAngles"].size(), 3U);
  EXPECT_EQ(json["lens"]["gateFit"], "None");
  EXPECT_THAT(json["lens"]["sensorSize"].get<std::vector<double>>(),
              ElementsAre(36, testing::DoubleEq(20.25)));
  input.sensorMm.reset();
  EXPECT_EQ(UnityJson(ToUnity(input))["lens"], nullptr);
}

}  // namespace
}  // namespace trackedcam::host
