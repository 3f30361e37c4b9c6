#include "app/terminal/engine_summary.h"

#include <sstream>

#include <gtest/gtest.h>

#include "../host/engine_named.h"

namespace trackedcam::app {
namespace {

using host::EngineExport;
using host::EngineNamed;

EngineExport ExportTo(std::string_view engine) {
  EngineExport engineExport;
  engineExport.engine = &EngineNamed(engine);
  engineExport.values.translationCm = {-10, 20.00004, 30.5};
  return engineExport;
}

std::string SummaryOf(const EngineExport& engineExport) {
  std::ostringstream out;
  PrintEngineExport(out, engineExport);
  return out.str();
}

std::string ProblemPrintedFor(const EngineExport& engineExport) {
  std::ostringstream out;
  PrintProblem(out, engineExport);
  return out.str();
}

TEST(EngineSummary, NamesAxesAndAngles) {
  EngineExport ue4 = ExportTo("ue4");
  ue4.values.rotationDeg = {-1, 2.5, 179.99996};
  EXPECT_EQ(SummaryOf(ue4),
            "Unreal Engine 4, left-handed\n"
            "                                            X            Y            Z\n"
            "  axes at the camera                  forward        right           up\n"
            "  axes of the tracker, reported             z           -x            y\n"
            "  translation, cm                    -10.0000      20.0000      30.5000\n"
            "                                         roll        pitch          yaw\n"
            "  rotation, deg                       -1.0000       2.5000     180.0000\n");
}

TEST(EngineSummary, NamesTheQuaternionsOrder) {
  EngineExport ue5 = ExportTo("ue5-xn");
  ue5.values.quaternionXyzw = {0, 0, 0.70710678, -0.70710678};
  EXPECT_EQ(
      SummaryOf(ue5),
      "Unreal Engine 5 (xN), right-handed\n"
      "                                            X            Y            Z\n"
      "  axes at the camera                       up      forward         left\n"
      "  axes of the tracker, reported             y            z            x\n"
      "  translation, cm                    -10.0000      20.0000      30.5000\n"
      "                                            X            Y            Z            W\n"
      "  rotation, quaternion              0.0000000    0.0000000    0.7071068   -0.7071068\n");
}

TEST(EngineSummary, ShowsTheLensAndATranslationAlongOtherAxes) {
  EngineExport aximmetry = ExportTo("aximmetry");
  aximmetry.values.rotationDeg = {1, 2, 3};
  aximmetry.values.fovX = {90.00001};
  aximmetry.values.lensCentre = {0.01, -0.0025};
  EXPECT_EQ(SummaryOf(aximmetry),
            "Aximmetry, left-handed\n"
            "                                            X            Y            Z\n"
            "  axes at the camera                    right           up      forward\n"
            "  axes of the tracker, reported            -x            y            z\n"
            "  axes of the translation                  -x           -y           -z\n"
            "  translation, cm                    -10.0000      20.0000      30.5000\n"
            "                                            x            y            z\n"
            "  rotation, deg                        1.0000       2.0000       3.0000\n"
            "  horizontal field of view, deg       90.0000\n"
            "                                        right           up\n"
            "  lens centre, parts of image        0.010000    -0.002500\n");
}

TEST(EngineSummary, NamesTheFieldsOfUnreal) {
  EngineExport unreal = ExportTo("unreal");
  host::UnrealValues& values = unreal.values.unreal.emplace();
  values = {{1, 2, 3}, {10, -20, 30}, {0, 0, 0.6, 0.8}, {}, "-z,x,y"};
  const std::string place =
      "Unreal Engine, below a component, left-handed\n"
      "                                            X            Y            Z\n"
      "  axes at the camera                  forward        right           up\n"
      "  axes of the parent, reported             -z            x            y\n"
      "  Location, cm                         1.0000       2.0000       3.0000\n"
      "                                       roll X      pitch Y        yaw Z\n"
      "  Rotation, deg                       10.0000     -20.0000      30.0000\n"
      "                                            X            Y            Z            W\n"
      "  the same as a quaternion          0.0000000    0.0000000    0.6000000    0.8000000\n";
  EXPECT_EQ(SummaryOf(unreal), place);
  EXPECT_EQ(
      ProblemPrintedFor(unreal).find("trackedcam: warning: Unreal Engine, below a component: "),
      0U);

  values.lens = host::EngineLens{{1920, 1080}, {36, 20.25}, 32.4, {0.9, 1.6}, {0.51, 0.49},
                                 -0.1,         0.02,        0,    0,          0};
  EXPECT_EQ(SummaryOf(unreal),
            place +
                "  Lens File, Spherical, for 1920x1080\n"
                "  filmback, mm                        36.0000      20.2500\n"
                "  focal length by width, mm           32.4000\n"
                "  FxFy                              0.9000000    1.6000000\n"
                "  image centre                      0.5100000    0.4900000\n"
                "                                           K1           K2           K3\n"
                "  distortion, radial                -0.100000     0.020000     0.000000\n"
                "                                           P1           P2\n"
                "  distortion, tangential             0.000000     0.000000\n"
                "  nodal offset                  the Location and Rotation above, if they are not "
                "the camera's own\n");
  EXPECT_EQ(ProblemPrintedFor(unreal), "");
}

TEST(EngineSummary, NamesTheFieldsOfUnity) {
  EngineExport unity = ExportTo("unity");
  unity.values.unity = host::UnityValues{
      {0.1, 0.2, 0.3}, {0, 0, 0.6, 0.8}, {10, -20, 30}, host::UnityLens{}, "-x,y,z"};
  unity.values.unity->lens->lensShift = {-0.01, 0.02};
  EXPECT_NE(
      SummaryOf(unity).find(
          "  axes of the parent, reported             -x            y            z\n"
          "  localPosition, m                   0.100000     0.200000     0.300000\n"
          "  localEulerAngles, deg               10.0000     -20.0000      30.0000\n"
          "                                            X            Y            Z            W\n"
          "  localRotation                     0.0000000    0.0000000    0.6000000    0.8000000\n"),
      std::string::npos);
  EXPECT_NE(SummaryOf(unity).find("  lensShift                        -0.0100000    0.0200000\n"),
            std::string::npos);
}

TEST(EngineSummary, OfAFailureHasNoValues) {
  EngineExport ue4;
  ue4.engine = &EngineNamed("ue4");
  ue4.code = 3;
  EXPECT_NE(SummaryOf(ue4).find("\n  no values\n"), std::string::npos);
  EXPECT_EQ(SummaryOf(ue4).find("translation, cm"), std::string::npos);
}

TEST(EngineSummary, ProblemIsAnErrorOrAWarning) {
  EngineExport aximmetry = ExportTo("aximmetry");
  EXPECT_EQ(ProblemPrintedFor(aximmetry), "");
  aximmetry.isGimbalLocked = true;
  EXPECT_EQ(ProblemPrintedFor(aximmetry).find("trackedcam: warning: Aximmetry: gimbal lock. "), 0U);
  aximmetry.code = 3;
  EXPECT_EQ(ProblemPrintedFor(aximmetry).find("trackedcam: error 3: Aximmetry: gimbal lock. "), 0U);
}

}  // namespace
}  // namespace trackedcam::app
