#include "host/result/earlier_runs.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

Json ResultOf(const std::string& level, double mm) {
  return {
      {"time", "2026-11-21 14:05:09"},
      {"verdict", {{"level", level}}},
      {"reprojectionErrorPixels", 1.5},
      {"crossCheck",
       {{"t95", 2},
        {"standardErrorCamTc",
         {{"translationMm", {mm / 4, mm / 2, mm / 8}}, {"rotationDegrees", {0.01, 0.02, 0.01}}}}}}};
}

class EarlierRunsTest : public testing::Test {
 protected:
  void AddRun(const std::string& name, const std::string& text) {
    std::filesystem::create_directory(folder.Path() / name);
    test::WriteFile(folder.File(name + "/result.json"), text);
  }

  Json BesideThird(const Json& result) { return RunsBeside(folder.Path() / "run_003", result); }

  test::TemporaryFolder folder;
};

TEST_F(EarlierRunsTest, AreComparedWithTheBestOfThem) {
  AddRun("run_001", ResultOf("doubt", 3).dump());
  AddRun("run_002", ResultOf("good", 1.2).dump());
  AddRun("run_003", ResultOf("good", 0.7).dump());
  AddRun("run_004", ResultOf("wrong", 0.1).dump());
  const Json beside = BesideThird(ResultOf("good", 0.7));
  ASSERT_EQ(beside["runs"].size(), 3U);
  EXPECT_EQ(beside["runs"][0]["name"], "run_004");
  EXPECT_EQ(beside["runs"][1]["name"], "run_002");
  EXPECT_NEAR(beside["runs"][1]["mm"].get<double>(), 1.2, 1e-9);
  EXPECT_NEAR(beside["runs"][1]["degrees"].get<double>(), 0.04, 1e-9);
  EXPECT_THAT(beside["text"].get<std::string>(),
              testing::AllOf(HasSubstr("better than run_002"), HasSubstr("0.5 mm")));
  EXPECT_THAT(BesideThird(ResultOf("good", 2))["text"].get<std::string>(),
              testing::AllOf(HasSubstr("worse than run_002"), HasSubstr("0.8 mm")));
  EXPECT_THAT(BesideThird(ResultOf("wrong", 0.1))["text"].get<std::string>(),
              HasSubstr("no result to use; run_002"));
}

TEST_F(EarlierRunsTest, AreNoneWhereNothingIsAResult) {
  EXPECT_TRUE(BesideThird(ResultOf("good", 1)).is_null());
  EXPECT_TRUE(RunsBeside("nowhere/run_001", ResultOf("good", 1)).is_null());
  AddRun("run_001", "no JSON");
  AddRun("run_002", "{\"verdict\": 5}");
  AddRun("other", ResultOf("good", 1).dump());
  std::filesystem::create_directory(folder.Path() / "run_005");
  EXPECT_TRUE(BesideThird(ResultOf("good", 1)).is_null());
  AddRun("run_001", Json{{"verdict", {{"level", "failed"}}}}.dump());
  const Json beside = BesideThird(ResultOf("good", 1));
  ASSERT_EQ(beside["runs"].size(), 1U);
  EXPECT_TRUE(beside["runs"][0]["mm"].is_null());
  EXPECT_THAT(beside["text"].get<std::string>(), HasSubstr("No other run"));
}

TEST_F(EarlierRunsTest, AreAtMostTwenty) {
  for (int i = 100; i < 140; ++i) {
    AddRun("run_" + std::to_string(i), ResultOf("good", 1).dump());
  }
  const Json beside = BesideThird(ResultOf("good", 1));
  ASSERT_EQ(beside["runs"].size(), 20U);
  EXPECT_EQ(beside["runs"][0]["name"], "run_139");
}

}  // namespace
}  // namespace trackedcam::host
