#include "host/engines/unreal.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "engine_arithmetic.h"
#include "host/input/inputs.h"
#include "set_in_engine.h"

namespace trackedcam::host {
namespace {

using arithmetic::Pose;
using Eigen::Matrix3d;
using Eigen::Vector3d;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pointwise;

constexpr const char* kForwardRightUp = "z,x,-y";
constexpr double kTolerance = 1e-6;  // centimetres, degrees

ExportInput InputOf(const Instant& instant, const std::string& parentAxes = "") {
  return {instant.Calibration(), std::array<double, 2>{36, 20}, parentAxes};
}

void ExpectSame(const Pose& actual, const Pose& expected) {
  EXPECT_LT((actual.position - expected.position).norm(), kTolerance);
  EXPECT_LT(arithmetic::DegreesBetween(actual.axes, expected.axes), kTolerance);
}

// Named as a user types them, and the same in letters.
struct Parent {
  std::string typed;
  std::string axes;
};

class UnrealTest : public testing::TestWithParam<Parent> {};

TEST_P(UnrealTest, PutsTheCameraWhereItIs) {
  const unsigned seed = 20261121;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int round = 0; round < 40; ++round) {
    const Instant instant(random);
    const UnrealValues values = ToUnreal(InputOf(instant, GetParam().typed));
    EXPECT_EQ(values.parentAxes, GetParam().axes);
    const Vector3d location = arithmetic::VectorOf(values.locationCm);
    const std::vector<double>& r = values.rotationDeg;
    for (const char* world : {"z,-x,y", "-z,x,y", "x,-y,z"}) {
      const Pose component = instant.Component(world, GetParam().axes, 100);
      const Pose camera = instant.Camera(world, kForwardRightUp, 100);
      ExpectSame(Below(component, {arithmetic::FRotator(r[0], r[1], r[2]), location}), camera);
      ExpectSame(Below(component, {arithmetic::Quaternion(values.quaternionXyzw), location}),
                 camera);
    }
  }
}

std::string TestName(const testing::TestParamInfo<Parent>& parent) {
  return std::to_string(parent.index);
}
INSTANTIATE_TEST_SUITE_P(ParentAxes, UnrealTest,
                         testing::Values(Parent{"", "z,-x,y"}, Parent{"z,-x,y", "z,-x,y"},
                                         Parent{"z-forward", "z,-x,y"}, Parent{"-z,x,y", "-z,x,y"},
                                         Parent{"minus-z-forward", "-z,x,y"},
                                         Parent{"x,-y,z", "x,-y,z"}, Parent{"y,x,z", "y,x,z"}),
                         TestName);

TEST(Unreal, LooksStraightUpAndDown) {
  for (const double pitch : {90.0, -90.0, 90 - 1e-7, -90 + 1e-9}) {
    for (const double yaw : {0.0, 30.0, -170.0}) {
      const Matrix3d axes = arithmetic::FRotator(20, pitch, yaw);
      // Of a component that stands as the tracker is reported.
      Instant instant = [] {
        std::mt19937 random(1);
        return Instant(random);
      }();
      const Matrix3d reported =
          AxesOf("z,-x,y").transpose() * axes * AxesOf(kForwardRightUp);  // columns: the camera's
      Matrix3d fix;
      fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
      instant.Transform_Cam_Tc.topLeftCorner<3, 3>() = (fix * reported).transpose();
      const std::vector<double> r = ToUnreal(InputOf(instant)).rotationDeg;
      EXPECT_LT(arithmetic::DegreesBetween(arithmetic::FRotator(r[0], r[1], r[2]), axes),
                kTolerance)
          << pitch << ' ' << yaw;
    }
  }
}

TEST(Unreal, HasTheLensOfALensFile) {
  std::mt19937 random(1);
  const EngineLens lens = ToUnreal(InputOf(Instant(random))).lens.value();
  EXPECT_THAT(lens.imageSize, ElementsAre(1920, 1080));
  EXPECT_THAT(lens.fxFy, ElementsAre(0.9, 1.6));
  // A point that is seen at pixel (u, v) lies at ((u + 0.5) / width, (v + 0.5) / height).
  const double x = 0.2, y = -0.1;
  const double u = 0.9 * 1920 * x + 0.51 * 1920, v = 1.6 * 1080 * y + 0.48 * 1080;
  EXPECT_NEAR(lens.fxFy[0] * x + lens.imageCenter[0], (u + 0.5) / 1920, 1e-12);
  EXPECT_NEAR(lens.fxFy[1] * y + lens.imageCenter[1], (v + 0.5) / 1080, 1e-12);
  // One focal length for both directions: 32.4 mm over 36 mm, and over 20.25 mm.
  EXPECT_DOUBLE_EQ(lens.focalLengthMm, 32.4);
  EXPECT_THAT(lens.filmbackMm, ElementsAre(36, testing::DoubleEq(20.25)));
}

TEST(Unreal, JsonHasTheKeysOfTheEngine) {
  std::mt19937 random(1);
  const auto json = UnrealJson(ToUnreal(InputOf(Instant(random), "-z,x,y")));
  EXPECT_EQ(json["parentAxes"], "-z,x,y");
  EXPECT_EQ(json["locationCm"].size(), 3U);
  EXPECT_EQ(json["rotationDeg"].size(), 3U);
  EXPECT_EQ(json["quaternionXyzw"].size(), 4U);
  EXPECT_EQ(json["lens"]["distortion"].dump(),
            R"({"K1":-0.1,"K2":0.02,"K3":0.0,"P1":0.0,"P2":0.0})");
}

TEST(Unreal, KnowsNoLensWithoutASensor) {
  std::mt19937 random(1);
  ExportInput input = InputOf(Instant(random));
  input.sensorMm.reset();
  const UnrealValues values = ToUnreal(input);
  EXPECT_EQ(UnrealJson(values)["lens"], nullptr);
  EXPECT_EQ(values.locationCm.size(), 3U);
  EXPECT_THROW(LensFileText(values, "lens", false), std::runtime_error);
}

std::vector<double> NumbersOf(const std::string& row) {
  std::vector<double> numbers;
  std::istringstream stream(row);
  for (std::string number; std::getline(stream, number, ',');) {
    numbers.push_back(std::stod(number));
  }
  return numbers;
}

TEST(LensFile, HoldsLensAndNodalOffset) {
  std::mt19937 random(7);
  const Instant instant(random);
  const UnrealValues values = ToUnreal(InputOf(instant));
  const auto json = nlohmann::json::parse(LensFileText(values, "prime", true));
  EXPECT_EQ(json["metadata"]["type"], "LensFile");
  EXPECT_EQ(json["metadata"]["lensInfo"]["distortionModel"], "Spherical");
  EXPECT_EQ(json["metadata"]["lensInfo"]["modelName"], "prime");
  EXPECT_EQ(json["imageDimensions"]["width"], 1920);
  EXPECT_EQ(json["sensorDimensions"]["width"], 36.0);
  std::map<std::string, std::vector<double>> tables;
  std::map<std::string, std::string> headers;
  for (const auto& table : json["cameraParameterTables"]) {
    tables[table["parameterName"]] = NumbersOf(table["data"]);
    headers[table["parameterName"]] = table["header"];
  }
  EXPECT_THAT(tables.at("FocalLengthTable"),
              Pointwise(DoubleNear(1e-9), std::vector<double>{0, 0, 0.9, 1.6}));
  EXPECT_THAT(
      tables.at("ImageCenterTable"),
      Pointwise(DoubleNear(1e-9), std::vector<double>{0, 0, 0.51 + 0.5 / 1920, 0.48 + 0.5 / 1080}));
  EXPECT_EQ(headers.at("DistortionTable"), "FocusEncoder, ZoomEncoder, K1, K2, K3, P1, P2");
  EXPECT_THAT(tables.at("DistortionTable"),
              Pointwise(DoubleNear(1e-9), std::vector<double>{0, 0, -0.1, 0.02, 0, 0, 0}));

  // The editor takes the offset as one along x right, y down, z forward, and turns it into its own
  // axes: M' * offset * M, of matrices whose rows are the turned axes.
  const std::vector<double>& nodal = tables.at("NodalOffsetTable");
  ASSERT_EQ(nodal.size(), 9U);
  const Matrix3d toUnreal = AxesOf("z,x,-y");
  const Matrix3d axes = toUnreal *
                        arithmetic::Quaternion({nodal[2], nodal[3], nodal[4], nodal[5]}) *
                        toUnreal.transpose();
  const Vector3d location = toUnreal * Vector3d(nodal[6], nodal[7], nodal[8]);
  const Pose component = instant.Component("z,-x,y", "z,-x,y", 100);
  ExpectSame(Below(component, {axes, location}), instant.Camera("z,-x,y", kForwardRightUp, 100));
}

// Where the component has the pose, a Lens component must not apply it a second time.
TEST(LensFile, HasTheNodalOffsetOnlyOnRequest) {
  std::mt19937 random(7);
  const UnrealValues values = ToUnreal(InputOf(Instant(random)));
  const auto with = nlohmann::json::parse(LensFileText(values, "prime", true));
  auto without = nlohmann::json::parse(LensFileText(values, "prime", false));
  ASSERT_EQ(without["cameraParameterTables"].size(), 3U);
  for (const auto& table : without["cameraParameterTables"]) {
    EXPECT_NE(table["parameterName"], "NodalOffsetTable");
  }
  for (const auto& table : with["cameraParameterTables"]) {
    if (table["parameterName"] == "NodalOffsetTable") {
      without["cameraParameterTables"].push_back(table);
    }
  }
  EXPECT_EQ(with, without);
}

TEST(ParentAxes, MustBeThreeLeftHandedAxes) {
  const auto error = [](const std::string& text) {
    try {
      ParseParentAxes(text, "z,-x,y");
    } catch (const InputError& caught) {
      return std::string(caught.what());
    }
    return std::string("no error");
  };
  for (const char* text : {"", "z", "z,-x", "z,-x,y,x", "z,-x,x", "z,-x,w", "z;-x;y", "z,--x,y",
                           "forward", "z,-x,y,"}) {
    EXPECT_THAT(error(text), HasSubstr("is not a list X,Y,Z of reported axes, such as z,-x,y"))
        << text;
  }
  EXPECT_THAT(error("x,y,z"), HasSubstr("x,y,z is right-handed"));
  EXPECT_THAT(error("z,x,y"), HasSubstr("is right-handed"));
}

TEST(ParentAxes, AreOfTheHandOfTheDefault) {
  EXPECT_EQ(ParseParentAxes("minus-z-forward", "-x,z,y").text, "x,-z,y");
  EXPECT_EQ(ParseParentAxes("x,y,z", "-x,z,y").text, "x,y,z");
  EXPECT_THROW(ParseParentAxes("z,-x,y", "-x,z,y"), InputError);
}

}  // namespace
}  // namespace trackedcam::host
