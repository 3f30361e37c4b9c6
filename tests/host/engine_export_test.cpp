#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "engine_named.h"
#include "host/engines/engine.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class EngineExportTest : public testing::Test {
 protected:
  // With this mounting the camera looks along the tracker's y axis.
  EngineExport Export(std::string_view engine,
                      const std::vector<double>& transformCamTc = {1, 0, 0, 0.1, 0, 1, 0, 0.2,  //
                                                                   0, 0, 1, 0.3, 0, 0, 0, 1}) {
    CalibrationOutputs outputs;
    outputs.normFocal = {0.5, 1};
    outputs.normCenter = {0.5, 0.5};
    outputs.transformCamTc = transformCamTc;
    return ExportToEngine(EngineNamed(engine), {outputs, {}, {}}, folder.Path() / engine);
  }

  test::TemporaryFolder folder;
};

TEST_F(EngineExportTest, HasValuesAndLog) {
  const EngineExport ue5 = Export("ue5");
  EXPECT_EQ(ue5.engine, &EngineNamed("ue5"));
  EXPECT_EQ(ue5.code, 0);
  EXPECT_FALSE(ue5.isGimbalLocked);
  EXPECT_THAT(ue5.values.translationCm, ElementsAre(-10, -30, 20));
  EXPECT_EQ(ue5.values.quaternionXyzw.size(), 4U);
  EXPECT_THAT(ue5.values.rotationDeg, IsEmpty());
  EXPECT_THAT(test::ReadText(ue5.log.u8string()), EndsWith("CamAxisToUE5 successful.\n"));
  EXPECT_EQ(ProblemOf(ue5), "");
}

TEST_F(EngineExportTest, TakesTheDoubtFromTheOrigin) {
  CalibrationOutputs outputs;
  outputs.transformCamTc = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  ExportInput input = {outputs, {}, {}};
  EXPECT_EQ(ExportToEngine(EngineNamed("unity"), input, {}).doubt, "");
  input.origin = Origin{"", Level::kGood, "Good.", {}, {}, {}};
  EXPECT_EQ(ExportToEngine(EngineNamed("unity"), input, {}).doubt, "");
  input.origin->level = Level::kDoubtful;
  EXPECT_EQ(ExportToEngine(EngineNamed("unity"), input, {}).doubt, "Good.");
}

TEST_F(EngineExportTest, ToUE4FailsInGimbalLock) {
  const EngineExport ue4 = Export("ue4");
  EXPECT_EQ(ue4.code, 3);
  EXPECT_TRUE(ue4.isGimbalLocked);
  EXPECT_THAT(ue4.values.rotationDeg, IsEmpty());
  EXPECT_THAT(ProblemOf(ue4), AllOf(HasSubstr("Unreal Engine 4: gimbal lock. "),
                                    HasSubstr("roll and yaw"), HasSubstr("unreal, ue5 or ue5-xn")));
}

TEST_F(EngineExportTest, ToAximmetryWarnsOfGimbalLock) {
  const EngineExport aximmetry = Export("aximmetry");
  EXPECT_EQ(aximmetry.code, 0);
  EXPECT_TRUE(aximmetry.isGimbalLocked);
  EXPECT_THAT(aximmetry.values.rotationDeg, ElementsAre(90, 0, 0));
  EXPECT_THAT(ProblemOf(aximmetry), AllOf(HasSubstr("Aximmetry: gimbal lock. "),
                                          HasSubstr("The angle about y is set to 0")));
}

TEST_F(EngineExportTest, OfTooFewValuesPointsToTheLog) {
  const EngineExport ue5 = Export("ue5", {1, 2, 3});
  EXPECT_EQ(ue5.code, -1);
  EXPECT_THAT(ProblemOf(ue5), AllOf(HasSubstr("Unreal Engine 5: "), HasSubstr("code -1")));
  EXPECT_THAT(test::ReadText(ue5.log.u8string()),
              HasSubstr("transformCamTc has 3 elements, needs 16."));
}

TEST(EngineJson, HasEveryValueAtFullPrecision) {
  EngineExport ue5;
  ue5.engine = &EngineNamed("ue5");
  ue5.values.translationCm = {-10, 1.0 / 3.0, 30};
  ue5.values.quaternionXyzw = {0, 0, 0.6, 0.8};
  ue5.log = "/logs/log.txt";
  EXPECT_EQ(Json(EngineJson(ue5)), Json::parse(R"({
    "code": 0, "message": "No error",
    "engine": "ue5", "title": "Unreal Engine 5", "hand": "right-handed",
    "cameraAxes": ["right", "down", "forward"],
    "trackerAxes": ["-x", "-y", "z"],
    "translationAxes": ["-x", "-y", "z"],
    "translationCm": [-10.0, 0.3333333333333333, 30.0],
    "rotationDeg": [], "quaternionXyzw": [0.0, 0.0, 0.6, 0.8],
    "fovX": [], "lensCentre": [], "log": "/logs/log.txt"})"));
}

TEST(EngineJson, SaysThatTheResultIsInDoubt) {
  EngineExport aximmetry;
  aximmetry.engine = &EngineNamed("aximmetry");
  aximmetry.doubt = "Shoot again.";
  EXPECT_EQ(EngineJson(aximmetry)["message"], "Shoot again.");
  aximmetry.isGimbalLocked = true;
  EXPECT_EQ(EngineJson(aximmetry)["message"], ProblemOf(aximmetry) + " Shoot again.");
}

TEST(EngineJson, HasTheError) {
  EngineExport ue4;
  ue4.engine = &EngineNamed("ue4");
  ue4.code = 3;
  ue4.isGimbalLocked = true;
  const Json json = EngineJson(ue4);
  EXPECT_EQ(json["code"], 3);
  EXPECT_EQ(json["message"], ProblemOf(ue4));
  EXPECT_EQ(json["translationCm"], Json::array());
}

}  // namespace
}  // namespace trackedcam::host
