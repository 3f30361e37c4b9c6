#include "host/result/result_json.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/findings/finding_text.h"
#include "host/text/files.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::json;

Report GoodReport() {
  Report report;
  report.run.code = 0;
  report.run.record.isSuccessful = true;
  report.run.outputs = {{1920, 1080},
                        {0.9, 1.6},
                        {0.5, 0.49},
                        {-0.1, 1.0 / 3.0, 0, 0, 0},
                        {1, 0, 0, 0.01, 0, 1, 0, -0.02, 0, 0, 1, 0.03, 0, 0, 0, 1},
                        {58.1, 34.7},
                        {32.4}};
  report.run.record.libraryVersion = "v1.2.3";
  report.run.record.photographs = {{"a.jpg", std::nullopt, std::nullopt},
                                   {"b.jpg", DropReason::kNotLoaded, std::nullopt},
                                   {"c.jpg", DropReason::kBoardNotFound, std::nullopt},
                                   {"d.jpg", DropReason::kOutlier, std::nullopt}};
  report.run.record.lensError = 0.2;
  report.run.record.reprojectionError = 1.5;
  report.run.record.spread = 0.001;
  report.run.record.lastMessage = "Camera and Tracker Calibration successful.";
  report.run.log = "/logs/log.txt";
  report.run.record.photographs[0].errorPixels = 0.25;
  report.run.images = {"/logs/Reproject_a.jpg", "", "", ""};
  const std::vector<DataRow> rows = {
      {2, "", "a.jpg"}, {3, "", "b.jpg"}, {4, "", "c.jpg"}, {5, "", "d.jpg"}, {6, "", "e.jpg"}};
  report.photographs = ListPhotographs(rows);
  report.inputs.workingFolder = "/shoot";
  report.photographs[4].state = PhotographState::kLeftOutBeforeTheRun;
  EnterRun(report.run, ToRun(report.photographs), report.photographs);
  return report;
}

TEST(ResultJson, HoldsEveryValueAtFullPrecision) {
  const Json json = Json::parse(JsonText(ResultJson(GoodReport())));
  EXPECT_EQ(json["code"], 0);
  EXPECT_EQ(json["message"], "No error");
  EXPECT_EQ(json["imageSize"], Json({1920, 1080}));
  EXPECT_EQ(json["normFocal"], Json({0.9, 1.6}));
  EXPECT_EQ(json["normCenter"], Json({0.5, 0.49}));
  EXPECT_EQ(json["distortion"][1].get<double>(), 1.0 / 3.0);
  EXPECT_EQ(json["transformCamTc"].size(), 16U);
  EXPECT_EQ(json["transformCamTc"][7], -0.02);
  EXPECT_EQ(json["fieldOfView"], Json({58.1, 34.7}));
  EXPECT_EQ(json["focalLengthMm"], Json::array({32.4}));
  EXPECT_EQ(json["lensErrorPixels"], 0.2);
  EXPECT_EQ(json["reprojectionErrorPixels"], 1.5);
  EXPECT_EQ(json["translationSpreadMetres"], 0.001);
  EXPECT_EQ(json["limits"]["lensErrorPixels"]["failure"], 1.5);
  EXPECT_TRUE(json["limits"]["lensErrorPixels"]["doubt"].is_null());
  EXPECT_NEAR(json["limits"]["reprojectionErrorPixels"]["doubt"], 12, 1e-6);
  EXPECT_NEAR(json["limits"]["reprojectionErrorPixels"]["failure"], 18, 1e-5);
  EXPECT_EQ(json["limits"]["translationSpreadMetres"]["failure"], 0.015);
  EXPECT_EQ(json["limits"]["photographAngleDegrees"], 0.5);
}

TEST(ResultJson, ListsPhotographsAndFiles) {
  const Json json = Json::parse(JsonText(ResultJson(GoodReport())));
  std::string states;
  for (const Json& photograph : json["photographs"]) {
    states += photograph["state"].get<std::string>() + ' ';
  }
  EXPECT_EQ(states, "used notLoaded boardNotFound leftOutByFilter leftOutBeforeTheRun ");
  Json first = json["photographs"][0];
  EXPECT_EQ(std::filesystem::u8path(first["path"].get<std::string>()),
            std::filesystem::path("/shoot/a.jpg"));
  first.erase("path");
  EXPECT_EQ(first, Json::parse(R"({"row": 2, "name": "a.jpg", "state": "used", "reason": null,
      "libraryErrorPixels": 0.25, "reprojectedImage": "/logs/Reproject_a.jpg",
      "crossCheck": null})"));
  EXPECT_EQ(json["photographs"][3]["row"], 5);
  EXPECT_TRUE(json["photographs"][3]["reprojectedImage"].is_null());
  EXPECT_TRUE(json["photographs"][3]["reason"].is_string());
  EXPECT_EQ(json["log"], "/logs/log.txt");
  EXPECT_EQ(json["versions"]["library"], "v1.2.3");
  EXPECT_EQ(json["versions"]["program"], TRACKEDCAM_VERSION);
}

TEST(ResultJson, SaysHowLongEachPartTook) {
  Report report = GoodReport();
  EXPECT_EQ(ResultJson(report)["seconds"].dump(),
            R"({"library":null,"crossCheck":null,"page":null})");
  report.seconds = {12.34567, 0.0004};
  EXPECT_EQ(ResultJson(report, 2.0)["seconds"].dump(),
            R"({"library":12.346,"crossCheck":0.0,"page":2.0})");
}

TEST(ResultJson, HasNullForWhatIsNoNumber) {
  Report report = GoodReport();
  report.run.outputs.normFocal[0] = std::numeric_limits<double>::quiet_NaN();
  report.run.record.spread = -std::numeric_limits<double>::infinity();
  report.run.record.reprojectionError = std::nullopt;
  const Json json = Json::parse(JsonText(ResultJson(report)));
  EXPECT_TRUE(json["normFocal"][0].is_null());
  EXPECT_EQ(json["normFocal"][1], 1.6);
  EXPECT_TRUE(json["translationSpreadMetres"].is_null());
  EXPECT_TRUE(json["reprojectionErrorPixels"].is_null());
}

TEST(ResultJson, OfAFailureHasEmptyListsAndTheMessage) {
  Report report;
  report.run.code = 4;
  report.run.record.errorMessage = "Amount of valid images < 12.";
  report.run.record.lastMessage = "Error code 4: Amount of valid images < 12.";
  const Json json = Json::parse(JsonText(ResultJson(report)));
  EXPECT_EQ(json["code"], 4);
  EXPECT_EQ(json["message"], "Amount of valid images < 12.");
  EXPECT_EQ(json["imageSize"], Json::array());
  EXPECT_EQ(json["transformCamTc"], Json::array());
  EXPECT_TRUE(json["limits"]["reprojectionErrorPixels"].is_null());
  EXPECT_EQ(json["photographs"], Json::array());
}

// Reported x, y, z count as -x, -z, -y.
TEST(ResultJson, HasTheMountingInBothAxes) {
  Report report = GoodReport();
  report.inputs.mounting = Mounting{{0, 0, 0}, {0.1, -0.05, 0.02}};
  const Json inputs = ResultJson(report)["inputs"];
  EXPECT_EQ(inputs["chartTranslationMetres"], Json({0.1, -0.05, 0.02}));
  EXPECT_EQ(inputs["mountingAxes"], "fixed");
  const Json reported = inputs["mountingReported"];
  EXPECT_NEAR(reported["translationMetres"][0], -0.1, 1e-9);
  EXPECT_NEAR(reported["translationMetres"][1], -0.02, 1e-9);
  EXPECT_NEAR(reported["translationMetres"][2], 0.05, 1e-9);
  EXPECT_NEAR(reported["rotationDegrees"][0], 90, 1e-6);
  report.inputs.mounting = std::nullopt;
  EXPECT_TRUE(ResultJson(report)["inputs"]["mountingReported"].is_null());
}

TEST(ResultJson, HasWhatIsGoodEnough) {
  Report report = GoodReport();
  report.inputs.goodEnough = {1.5, 0.1};
  const Json goodEnough = ResultJson(report)["inputs"]["goodEnough"];
  EXPECT_EQ(goodEnough["mm"], 1.5);
  EXPECT_EQ(goodEnough["degrees"], 0.1);
}

TEST(ResultJson, SaysWhetherTheMountingIsCertainlyOffAndByWhichMistake) {
  const auto nominal = [](double p) {
    Report report = GoodReport();
    report.crossCheck.emplace();
    report.crossCheck->library.emplace();
    report.crossCheck->library->p = p;
    report.crossCheck->nominalMounting.emplace();
    report.crossCheck->nominalMounting->likelyMistake = crosscheck::MountingMistake::kInverse;
    return Json::parse(JsonText(ResultJson(report)))["crossCheck"];
  };
  EXPECT_EQ(nominal(0.0001)["library"]["isCertain"], true);
  EXPECT_EQ(nominal(0.001)["library"]["isCertain"], false);
  EXPECT_EQ(nominal(0.5)["library"]["isCertain"], false);
  EXPECT_EQ(nominal(0.01)["library"]["certainty"], "likely");
  EXPECT_EQ(nominal(0.01)["library"]["certaintyText"], CertaintyText(0.01, false));
  EXPECT_EQ(nominal(0.5)["library"]["certainty"], "byChance");
  EXPECT_TRUE(nominal(std::nan(""))["library"]["p"].is_null());
  EXPECT_EQ(nominal(std::nan(""))["library"]["certainty"], "unknown");
  EXPECT_EQ(nominal(0.5)["nominalMounting"]["likelyMistake"], "inverse");
  EXPECT_FALSE(nominal(0.5)["nominalMounting"]["likelyMistakeText"].get<std::string>().empty());
}

TEST(ResultJson, OfWrongUseHasTheLastLine) {
  Report report;
  report.run.code = -1;
  report.run.record.lastMessage = "chartTrackerRotation has 2 elements, needs 3.";
  EXPECT_EQ(ResultJson(report)["message"], "chartTrackerRotation has 2 elements, needs 3.");
}

TEST(ResultJson, OfAnExceptionHasNoCode) {
  Report report;
  report.run.exception = "bad conversion";
  const Json json = Json::parse(JsonText(ResultJson(report)));
  EXPECT_TRUE(json["code"].is_null());
  EXPECT_EQ(json["message"], "bad conversion");
}

TEST(ResultJson, IsValidWhateverBytesAPathHas) {
  Report report = GoodReport();
  report.photographs[0].name = "a\xFF\"b.jpg";
  EXPECT_EQ(Json::parse(JsonText(ResultJson(report)))["photographs"][0]["name"], "a\uFFFD\"b.jpg");
}

}  // namespace
}  // namespace trackedcam::host
