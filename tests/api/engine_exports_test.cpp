#include <cmath>

#include "geometry/transform.h"
#include "support/log_lines.h"
#include "support/random_transform.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam {
namespace {

using Numbers = std::vector<double>;

// No rotation and a translation of (0.1, 0.2, 0.3) metres.
const Numbers kShifted = {1, 0, 0, 0.1, 0, 1, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1};
const std::vector<std::string> kShiftedLines = {
    "Transform_Cam_Tc : ", "[[1.000000, 0.000000, 0.000000, 0.100000],",
    " [0.000000, 1.000000, 0.000000, 0.200000],", " [0.000000, 0.000000, 1.000000, 0.300000],",
    " [0.000000, 0.000000, 0.000000, 1.000000]]"};

Eigen::Matrix3d Rotation(const Eigen::Vector3d& axis, double degrees) {
  return Eigen::AngleAxisd(degrees * EIGEN_PI / 180, axis).toRotationMatrix();
}

// The offset in the engine's axes, computed in another way: the inverse of Transform_Cam_Tc with
// the axes of both frames exchanged. A row of cameraAxes or trackerAxes is an axis of the engine.
Eigen::Matrix4d Offset(const Eigen::Matrix4d& Transform_Cam_Tc, const Eigen::Matrix3d& cameraAxes,
                       const Eigen::Matrix3d& trackerAxes) {
  const Eigen::Matrix3d rotation = Transform_Cam_Tc.topLeftCorner<3, 3>().transpose();
  const Eigen::Vector3d translation = -rotation * Transform_Cam_Tc.topRightCorner<3, 1>();
  return MakeTransform(trackerAxes * rotation * cameraAxes.transpose(), trackerAxes * translation);
}

Eigen::Matrix3d Rows(std::initializer_list<double> rows) {
  return Eigen::Matrix<double, 3, 3, Eigen::RowMajor>(rows.begin());
}

class EngineExports : public testing::Test {
 protected:
  std::string Folder() const { return folder.Path().u8string(); }
  std::vector<std::string> Log() const { return test::ReadLogLines(test::OnlyLogIn(Folder())); }

  // The opening lines, the input transform, and the rest.
  static std::vector<std::string> Lines(const std::string& name,
                                        const std::vector<std::string>& rest) {
    std::vector<std::string> lines = {"Version : v" TRACKEDCAM_VERSION, name + " start."};
    lines.insert(lines.end(), kShiftedLines.begin(), kShiftedLines.end());
    lines.insert(lines.end(), rest.begin(), rest.end());
    return lines;
  }

  test::TemporaryFolder folder;
  Numbers rotation;
  Numbers translation;
};

void ExpectNear(const Numbers& actual, const Numbers& expected, double tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << i;
  }
}

TEST_F(EngineExports, ToUnrealEngine4RefusesTheTrackersOwnFrame) {
  EXPECT_EQ(CamAxisToUE4(kShifted, rotation, translation, Folder()), 3);
  EXPECT_TRUE(rotation.empty());
  EXPECT_TRUE(translation.empty());
  EXPECT_EQ(Log(), Lines("CamAxisToUE4",
                         {"I Change Hand.", "I Transform_Tc_UE4Cam.", "I Transform_Tc_Cam_inUE4.",
                          "Transform_Tc_Cam_UE4 : ", "[[0.000000, 0.000000, 1.000000, 0.200000],",
                          " [0.000000, 1.000000, 0.000000, -0.100000],",
                          " [-1.000000, 0.000000, 0.000000, 0.300000],",
                          " [0.000000, 0.000000, 0.000000, 1.000000]]",
                          "Encountered Gimbal lock : ", "SingularityTest : -0.500000",
                          "x : 0.000000, y : 0.707107, z : 0.000000",
                          "Error code 3 : Encountered Gimbal lock."}));
}

TEST_F(EngineExports, ToUnrealEngine4AgreeWithASecondComputation) {
  std::mt19937 random(6);
  testing::internal::CaptureStdout();
  for (int i = 0; i < 10000; ++i) {
    const Transform Transform_Cam_Tc = test::RandomTransform(random);
    Numbers elements;
    AppendTransform(elements, Transform_Cam_Tc);
    rotation.clear();
    translation.clear();
    if (CamAxisToUE4(elements, rotation, translation, "") == 3) {
      continue;
    }
    const Eigen::Matrix4d expected = Offset(Transform_Cam_Tc, Rows({0, 0, 1, 1, 0, 0, 0, -1, 0}),
                                            Rows({0, -1, 0, 1, 0, 0, 0, 0, -1}));
    const Eigen::Matrix3d composed = Rotation({0, 0, 1}, rotation[2]) *
                                     Rotation({0, 1, 0}, -rotation[1]) *
                                     Rotation({1, 0, 0}, -rotation[0]);
    ASSERT_LT(test::AngleBetweenDeg(composed, expected.topLeftCorner<3, 3>()),
              std::abs(rotation[1]) < 89 ? 2e-3 : 0.1);
    for (int axis = 0; axis < 3; ++axis) {
      ASSERT_NEAR(translation[static_cast<std::size_t>(axis)], 100 * expected(axis, 3), 2e-5);
    }
  }
  testing::internal::GetCapturedStdout();
}

TEST_F(EngineExports, ToUnrealEngine4ReturnSinglePrecision) {
  // 90 degrees about x is not near gimbal lock.
  const Numbers turned = {1, 0, 0, 0.1, 0, 0, -1, 0.2, 0, 1, 0, 0.3, 0, 0, 0, 1};
  EXPECT_EQ(CamAxisToUE4(turned, rotation, translation, Folder()), 0);
  ASSERT_EQ(translation.size(), 3u);
  for (const double centimetres : translation) {
    EXPECT_EQ(centimetres, static_cast<double>(static_cast<float>(centimetres)));
  }
  EXPECT_EQ(std::abs(translation[1]), static_cast<double>(0.1F * 100.0F));
  const std::vector<std::string> log = Log();
  EXPECT_TRUE(test::LineReads(log[log.size() - 3], "Rot_Tc_Cam_UE4_Euler : #, #, # deg"));
  EXPECT_TRUE(test::LineReads(log[log.size() - 2], "Trans_Tc_Cam_UE4_cm : #, #, # cm"));
  EXPECT_EQ(log.back(), "CamAxisToUE4 successful.");

  EXPECT_EQ(CamAxisToUE4(turned, rotation, translation, Folder()), 0);
  EXPECT_EQ(rotation.size(), 6u);
  EXPECT_EQ(translation.size(), 6u);
}

TEST_F(EngineExports, FillTheirTwoOutputsAlternately) {
  // One vector for both outputs shows the order: roll, x, pitch, y, yaw, z.
  const Numbers turned = {1, 0, 0, 0.1, 0, 0, -1, 0.2, 0, 1, 0, 0.3, 0, 0, 0, 1};
  CamAxisToUE4(turned, rotation, translation, Folder());
  Numbers both;
  CamAxisToUE4(turned, both, both, Folder());
  EXPECT_EQ(both, (Numbers{rotation[0], translation[0], rotation[1], translation[1], rotation[2],
                           translation[2]}));
}

TEST_F(EngineExports, ToUnrealEngine5GiveTheValuesComputedByHand) {
  EXPECT_EQ(CamAxisToUE5(kShifted, rotation, translation, Folder()), 0);
  ExpectNear(rotation, {-std::sqrt(0.5), 0, 0, std::sqrt(0.5)}, 1e-15);
  ExpectNear(translation, {-10, -30, 20}, 1e-13);
  EXPECT_EQ(Log().size(), 15u);
  const std::vector<std::string> log = Log();
  EXPECT_EQ(log[7], "Transform_Tc_Cam_UE5 : ");
  EXPECT_TRUE(test::LineReads(
      log[12], {"UE5 Quat_Tc_Cam (xyzw): -0.707107, 0.000000, 0.000000, 0.707107", 1e-9}));
  EXPECT_EQ(log[13], "UE5 Trans_Tc_Cam_cm (xyz): -10.000000, -30.000000, 20.000000 cm");
  EXPECT_EQ(log[14], "CamAxisToUE5 successful.");
}

TEST_F(EngineExports, ToUnrealEngine5xNGiveTheValuesComputedByHand) {
  EXPECT_EQ(CamAxisToUE5_ExportxN(kShifted, rotation, translation, Folder()), 0);
  ExpectNear(rotation, {0, 0, std::sqrt(0.5), std::sqrt(0.5)}, 1e-15);
  ExpectNear(translation, {30, 20, 10}, 1e-13);
  const std::vector<std::string> log = Log();
  EXPECT_EQ(log[1], "CamAxisToUE5_ExportxN start.");
  EXPECT_EQ(log[7], "Transform_Tc_Cam_UE5 : ");
  EXPECT_EQ(log.back(), "CamAxisToUE5_ExportxN successful.");
}

TEST_F(EngineExports, ToUnrealEngine5AgreeWithASecondComputation) {
  std::mt19937 random(7);
  testing::internal::CaptureStdout();
  for (int i = 0; i < 10000; ++i) {
    const Transform Transform_Cam_Tc = test::RandomTransform(random);
    Numbers elements;
    AppendTransform(elements, Transform_Cam_Tc);
    const auto expectOffset = [&](int code, const Eigen::Matrix4d& expected) {
      ASSERT_EQ(code, 0);
      const Eigen::Quaterniond q(rotation[3], rotation[0], rotation[1], rotation[2]);
      ASSERT_NEAR(q.norm(), 1, 1e-12);
      const Eigen::Matrix4d actual =
          MakeTransform(q.toRotationMatrix(), Eigen::Vector3d(translation.data()) / 100);
      ASSERT_THAT(actual, test::IsNear(expected, 1e-12));
      rotation.clear();
      translation.clear();
    };
    const int plain = CamAxisToUE5(elements, rotation, translation, "");
    expectOffset(plain, Offset(Transform_Cam_Tc, Eigen::Matrix3d::Identity(),
                               Rows({1, 0, 0, 0, 0, 1, 0, -1, 0})));
    const int other = CamAxisToUE5_ExportxN(elements, rotation, translation, "");
    expectOffset(other, Offset(Transform_Cam_Tc, Rows({0, -1, 0, 0, 0, 1, -1, 0, 0}),
                               Rows({0, 0, -1, 0, -1, 0, -1, 0, 0})));
  }
  testing::internal::GetCapturedStdout();
}

TEST_F(EngineExports, ToUnrealEngine5LogTheFirstElementsOfFilledOutputs) {
  rotation = {1, 2, 3, 4};
  translation = {5, 6, 7};
  EXPECT_EQ(CamAxisToUE5(kShifted, rotation, translation, Folder()), 0);
  EXPECT_EQ(rotation.size(), 8u);
  EXPECT_EQ(translation.size(), 6u);
  EXPECT_EQ(Log()[12], "UE5 Quat_Tc_Cam (xyzw): 1.000000, 2.000000, 3.000000, 4.000000");
  EXPECT_EQ(Log()[13], "UE5 Trans_Tc_Cam_cm (xyz): 5.000000, 6.000000, 7.000000 cm");
}

class AximmetryExport : public EngineExports {
 protected:
  int Export(const Numbers& normFocal, const Numbers& normCenter, const Numbers& transform) {
    return CamAxisToAximmetry(normFocal, normCenter, transform, fovX, lensCentre, rotation,
                              translation, Folder());
  }

  Numbers fovX;
  Numbers lensCentre;
};

TEST_F(AximmetryExport, GivesTheValuesComputedByHandInGimbalLock) {
  EXPECT_EQ(Export({0.5, 0.888889}, {0.5, 0.5}, kShifted), 0);
  EXPECT_EQ(fovX, Numbers{90.00000000257238});
  EXPECT_EQ(lensCentre, (Numbers{0, 0}));
  EXPECT_FALSE(std::signbit(lensCentre[0]));
  EXPECT_TRUE(std::signbit(lensCentre[1]));
  EXPECT_EQ(rotation, (Numbers{90, 0, 0}));
  EXPECT_FALSE(std::signbit(rotation[1]));
  ExpectNear(translation, {-10, -30, -20}, 1e-5);
  EXPECT_EQ(Log()[2], "Norm_Fxy : 0.500000, 0.888889");
  const std::vector<std::string> log = Log();
  EXPECT_EQ((std::vector<std::string>(log.begin() + 2, log.begin() + 7)),
            (std::vector<std::string>{
                "Norm_Fxy : 0.500000, 0.888889", "Norm_Cxy : 0.500000, 0.500000",
                "FoVX : 90.000000", "AximmetryCxy : 0.000000, -0.000000", "Transform_Cam_Tc : "}));
  EXPECT_EQ(log[11], "Transform_Tc_Cam_AX : ");
  EXPECT_EQ(log[16], "Encountered Gimbal lock");
  EXPECT_EQ(log[17], "Rot_Tc_Cam_AX_Euler : 90.000000, 0.000000, 0.000000 deg");
  EXPECT_EQ(log[18], "Trans_Tc_Cam_AX_cm : -10.000000, -30.000002, -20.000000 cm");
  EXPECT_EQ(log.size(), 19u);
}

TEST_F(AximmetryExport, ConvertsTheLens) {
  EXPECT_EQ(Export({0.6, 1}, {0.52, 0.47}, kShifted), 0);
  EXPECT_EQ(fovX, Numbers{79.61114218680585});
  EXPECT_EQ(lensCentre, (Numbers{0.020000000000000018, 0.030000000000000027}));
}

TEST_F(AximmetryExport, OfNoFocalLengthIsAHalfTurn) {
  EXPECT_EQ(Export({0, 0}, {0.5, 0.5}, kShifted), 0);
  EXPECT_DOUBLE_EQ(fovX[0], 180 * (EIGEN_PI / 3.1415926535));
}

TEST_F(AximmetryExport, LogsTheFirstElementsOfFilledLensOutputs) {
  fovX = {12};
  lensCentre = {3, 4};
  rotation = {1};
  EXPECT_EQ(Export({0.5, 1}, {0.5, 0.5}, kShifted), 0);
  EXPECT_EQ(fovX.size(), 2u);
  EXPECT_EQ(lensCentre.size(), 4u);
  EXPECT_EQ(rotation.size(), 4u);
  EXPECT_EQ(Log()[4], "FoVX : 12.000000");
  EXPECT_EQ(Log()[5], "AximmetryCxy : 3.000000, 4.000000");
}

TEST_F(AximmetryExport, AgreesWithASecondComputation) {
  std::mt19937 random(8);
  testing::internal::CaptureStdout();
  for (int i = 0; i < 10000; ++i) {
    const Transform Transform_Cam_Tc = test::RandomTransform(random);
    Numbers elements;
    AppendTransform(elements, Transform_Cam_Tc);
    rotation.clear();
    translation.clear();
    ASSERT_EQ(CamAxisToAximmetry({1, 1}, {0.5, 0.5}, elements, fovX, lensCentre, rotation,
                                 translation, ""),
              0);
    const Eigen::Matrix4d expected = Offset(Transform_Cam_Tc, Rows({1, 0, 0, 0, -1, 0, 0, 0, 1}),
                                            Rows({1, 0, 0, 0, 0, -1, 0, -1, 0}));
    const Eigen::Matrix3d composed = Rotation({0, 1, 0}, rotation[1]) *
                                     Rotation({1, 0, 0}, rotation[0]) *
                                     Rotation({0, 0, 1}, rotation[2]);
    ASSERT_LT(test::AngleBetweenDeg(composed, expected.topLeftCorner<3, 3>()),
              std::abs(rotation[0]) < 89 ? 2e-3 : 0.2);
    ASSERT_NEAR(translation[0], 100 * expected(0, 3), 2e-5);
    ASSERT_NEAR(translation[1], -100 * expected(1, 3), 2e-5);
    ASSERT_NEAR(translation[2], -100 * expected(2, 3), 2e-5);
  }
  testing::internal::GetCapturedStdout();
}

TEST_F(AximmetryExport, NamesTheInputThatIsTooShort) {
  const Numbers fifteen(kShifted.begin(), kShifted.end() - 1);
  const auto expectRefused = [&](const Numbers& normFocal, const Numbers& normCenter,
                                 const Numbers& transform, const std::string& line) {
    const test::TemporaryFolder own;
    EXPECT_EQ(CamAxisToAximmetry(normFocal, normCenter, transform, fovX, lensCentre, rotation,
                                 translation, own.Path().u8string()),
              -1);
    EXPECT_EQ(test::ReadLogLines(test::OnlyLogIn(own.Path().u8string())),
              (std::vector<std::string>{"Version : v" TRACKEDCAM_VERSION,
                                        "CamAxisToAximmetry start.", line}));
  };
  expectRefused({0.5}, {0.5, 0.5}, kShifted, "normFocal has 1 elements, needs 2.");
  expectRefused({0.5, 0.5}, {}, kShifted, "normCenter has 0 elements, needs 2.");
  expectRefused({0.5, 0.5}, {0.5, 0.5}, fifteen, "transformCamTc has 15 elements, needs 16.");
  EXPECT_TRUE(fovX.empty() && lensCentre.empty() && rotation.empty() && translation.empty());
}

TEST_F(EngineExports, RefuseATransformOfFewerThanSixteenElements) {
  const Numbers fifteen(kShifted.begin(), kShifted.end() - 1);
  for (const auto& [name, function] :
       {std::pair("CamAxisToUE4", &CamAxisToUE4), std::pair("CamAxisToUE5", &CamAxisToUE5),
        std::pair("CamAxisToUE5_ExportxN", &CamAxisToUE5_ExportxN)}) {
    const test::TemporaryFolder own;
    EXPECT_EQ(function(fifteen, rotation, translation, own.Path().u8string()), -1);
    EXPECT_EQ(
        test::ReadLogLines(test::OnlyLogIn(own.Path().u8string())),
        (std::vector<std::string>{"Version : v" TRACKEDCAM_VERSION, std::string(name) + " start.",
                                  "transformCamTc has 15 elements, needs 16."}));
  }
  EXPECT_TRUE(rotation.empty());
  EXPECT_TRUE(translation.empty());
}

}  // namespace
}  // namespace trackedcam
