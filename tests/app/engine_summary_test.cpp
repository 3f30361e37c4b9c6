#include "app/words/engine_summary.h"

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
  engineExport.figures.translationCm = {-10, 20.00004, 30.5};
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
  ue4.figures.rotationDeg = {-1, 2.5, 179.99996};
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
  ue5.figures.quaternionXyzw = {0, 0, 0.70710678, -0.70710678};
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
  aximmetry.figures.rotationDeg = {1, 2, 3};
  aximmetry.figures.fovX = {90.00001};
  aximmetry.figures.lensCentre = {0.01, -0.0025};
  EXPECT_EQ(SummaryOf(aximmetry),
            "Aximmetry, left-handed\n"
            "                                            X            Y            Z\n"
            "  axes at the camera                    right           up      forward\n"
            "  axes of the tracker, reported            -x            y            z\n"
            "  the translation counts along             -x           -y           -z\n"
            "  translation, cm                    -10.0000      20.0000      30.5000\n"
            "                                            x            y            z\n"
            "  rotation, deg                        1.0000       2.0000       3.0000\n"
            "  horizontal field of view, deg       90.0000\n"
            "                                        right           up\n"
            "  lens centre, parts of image        0.010000    -0.002500\n");
}

TEST(EngineSummary, OfAFailureHasNoFigures) {
  EngineExport ue4;
  ue4.engine = &EngineNamed("ue4");
  ue4.code = 3;
  EXPECT_NE(SummaryOf(ue4).find("\n  no figures\n"), std::string::npos);
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
