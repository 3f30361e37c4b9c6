#include "app/engines/engine_json.h"

#include <gtest/gtest.h>

#include "engine_named.h"

namespace trackedcam::app {
namespace {

using Json = nlohmann::json;

TEST(EngineJson, HoldsEveryFigureAtFullPrecision) {
  EngineExport ue5;
  ue5.engine = &EngineNamed("ue5");
  ue5.figures.translationCm = {-10, 1.0 / 3.0, 30};
  ue5.figures.quaternionXyzw = {0, 0, 0.6, 0.8};
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

TEST(EngineJson, SaysWhatWentWrong) {
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
}  // namespace trackedcam::app
