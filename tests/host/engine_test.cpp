#include "host/engines/engine.h"

#include <algorithm>
#include <map>
#include <random>

#include <gmock/gmock.h>

#include "engine_arithmetic.h"
#include "set_in_engine.h"
#include "support/random_transform.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;
using Eigen::Vector3d;

using Directions = std::map<std::string, Vector3d>;

const Directions kAtTheCamera = {{"right", {1, 0, 0}},
                                 {"left", {-1, 0, 0}},
                                 {"down", {0, 1, 0}},
                                 {"up", {0, -1, 0}},
                                 {"forward", {0, 0, 1}}};
const Directions kAtTheTracker = {{"x", {1, 0, 0}},   {"-x", {-1, 0, 0}}, {"y", {0, 1, 0}},
                                  {"-y", {0, -1, 0}}, {"z", {0, 0, 1}},   {"-z", {0, 0, -1}}};

Matrix3d Columns(const Axes& words, const Directions& directions) {
  Matrix3d columns;
  for (int axis = 0; axis < 3; ++axis) {
    columns.col(axis) = directions.at(words[static_cast<std::size_t>(axis)]);
  }
  return columns;
}

// Where the camera sits at its tracker, in the tracker's axes as they are reported.
struct Placement {
  Matrix3d rotation;  // of a direction at the camera
  Vector3d translation;
};

Placement PlacementOf(const Transform& Transform_Cam_Tc) {
  // The calibration counts along the reported -x, -z and -y of the tracker.
  Matrix3d reported;
  reported << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  const Matrix3d rotation = Transform_Cam_Tc.topLeftCorner<3, 3>().transpose();
  return {reported.transpose() * rotation,
          -reported.transpose() * rotation * Transform_Cam_Tc.topRightCorner<3, 1>()};
}

Matrix3d Turn(double degrees, const Vector3d& axis) {
  return Eigen::AngleAxisd(degrees * EIGEN_PI / 180, axis).toRotationMatrix();
}

Matrix3d RotationOf(std::string_view engine, const EngineValues& values) {
  if (!values.quaternionXyzw.empty()) {
    const std::vector<double>& q = values.quaternionXyzw;
    return Eigen::Quaterniond(q[3], q[0], q[1], q[2]).toRotationMatrix();
  }
  const Vector3d x = Vector3d::UnitX();
  const Vector3d y = Vector3d::UnitY();
  const Vector3d z = Vector3d::UnitZ();
  const std::vector<double>& a = values.rotationDeg;
  return engine == "ue4" ? Matrix3d(Turn(a[2], z) * Turn(-a[1], y) * Turn(-a[0], x))
                         : Matrix3d(Turn(a[1], y) * Turn(a[0], x) * Turn(a[2], z));
}

class EngineTest : public testing::TestWithParam<Engine> {
 protected:
  EngineValues Values(const Transform& Transform_Cam_Tc) const {
    CalibrationOutputs outputs;
    outputs.normFocal = {0.9, 1.6};
    outputs.normCenter = {0.5, 0.5};
    for (int row = 0; row < 4; ++row) {
      for (int col = 0; col < 4; ++col) {
        outputs.transformCamTc.push_back(Transform_Cam_Tc(row, col));
      }
    }
    EngineValues values;
    EXPECT_EQ(GetParam().convert({outputs, {}, {}}, folder.Path().u8string(), values), 0);
    return values;
  }

  test::TemporaryFolder folder;
};

TEST_P(EngineTest, CountsAlongTheAxesThatItNames) {
  const Engine& engine = GetParam();
  const Matrix3d camera = Columns(engine.cameraAxes, kAtTheCamera);
  const Matrix3d tracker = Columns(engine.trackerAxes, kAtTheTracker);
  const Matrix3d translation = Columns(engine.translationAxes, kAtTheTracker);
  std::mt19937 random(20260311);
  for (int round = 0; round < 20; ++round) {
    const Transform Transform_Cam_Tc = test::RandomTransform(random);
    const Placement placement = PlacementOf(Transform_Cam_Tc);
    const EngineValues values = Values(Transform_Cam_Tc);
    const Matrix3d rotation = RotationOf(engine.name, values);
    EXPECT_TRUE(rotation.isApprox(tracker.transpose() * placement.rotation * camera, 1e-4))
        << round;
    const Vector3d centimetres = translation.transpose() * placement.translation * 100;
    EXPECT_TRUE(Vector3d(values.translationCm.data()).isApprox(centimetres, 1e-4)) << round;
  }
}

TEST_P(EngineTest, HasTheHandednessThatItNames) {
  const Engine& engine = GetParam();
  const double hand = std::string_view(engine.handedness) == "right-handed" ? 1 : -1;
  EXPECT_EQ(Columns(engine.cameraAxes, kAtTheCamera).determinant(), hand);
  EXPECT_EQ(Columns(engine.trackerAxes, kAtTheTracker).determinant(), hand);
}

// What an engine makes of the values, as a pose below the one that the tracker moves.
struct Below {
  const char* parent;    // its axes in the tracker's reported ones
  const char* atCamera;  // in the camera's x right, y down, z forward
  arithmetic::Pose relative;
};

Below InEngine(std::string_view engine, const EngineValues& values) {
  const std::vector<double>& t = values.translationCm;
  const std::vector<double>& a = values.rotationDeg;
  const std::vector<double>& q = values.quaternionXyzw;
  if (engine == "ue4") {
    return {"z,-x,y", "z,x,-y", {arithmetic::FRotator(a[0], a[1], a[2]), {t[0], t[1], t[2]}}};
  }
  if (engine == "ue5") {  // as an FTransform
    return {"z,-x,y",
            "z,x,-y",
            {arithmetic::Quaternion({-q[2], -q[0], q[1], q[3]}), {t[2], t[0], -t[1]}}};
  }
  if (engine == "ue5-xn") {  // in its own axes, which are right-handed
    return {"y,z,x", "-y,z,-x", {arithmetic::Quaternion(q), {t[0], t[1], t[2]}}};
  }
  // As localPosition and localEulerAngles of Unity, in centimetres.
  return {"-x,y,z", "x,-y,z", {arithmetic::UnityEuler(a[0], a[1], a[2]), {t[0], -t[1], -t[2]}}};
}

// In double precision but for ue4 and aximmetry: those hand out angles of up to 180 degrees and
// translations of up to 170 cm in single precision, whose last digit is then 1.5e-5.
TEST_P(EngineTest, PutsTheCameraWhereItIs) {
  const Engine& engine = GetParam();
  const bool isSingle = engine.name == "ue4" || engine.name == "aximmetry";
  const double most = isSingle ? 1e-4 : 1e-6;
  const unsigned seed = 20261121;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  double worstPosition = 0;
  double worstTurn = 0;
  for (int round = 0; round < 40; ++round) {
    const Instant instant(random);
    const Below below = InEngine(engine.name, Values(instant.Transform_Cam_Tc));
    for (const char* world : {"z,-x,y", "-z,x,y", "-x,y,z"}) {
      // Of the hand of the parent.
      const std::string axes = AxesOf(below.parent).determinant() < 0 ? world : "x,y,z";
      const arithmetic::Pose expected = instant.Camera(axes, below.atCamera, 100);
      const arithmetic::Pose actual =
          arithmetic::Below(instant.Component(axes, below.parent, 100), below.relative);
      worstPosition = std::max(worstPosition, (actual.position - expected.position).norm());
      worstTurn = std::max(worstTurn, arithmetic::DegreesBetween(actual.axes, expected.axes));
    }
  }
  EXPECT_LT(worstPosition, most);
  EXPECT_LT(worstTurn, most);
}

std::string TestName(const testing::TestParamInfo<Engine>& engine) {
  std::string name(engine.param.name);
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
}
std::vector<Engine> EnginesOfTheLibrary() {
  std::vector<Engine> engines;
  std::copy_if(kEngines.begin(), kEngines.end(), std::back_inserter(engines),
               [](const Engine& engine) { return !engine.takesParentAxes; });
  return engines;
}
INSTANTIATE_TEST_SUITE_P(OfTheLibrary, EngineTest, testing::ValuesIn(EnginesOfTheLibrary()),
                         TestName);

}  // namespace
}  // namespace trackedcam::host
