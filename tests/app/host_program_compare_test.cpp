// The program compares results of shoots with a known truth.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

using testing::HasSubstr;

std::string EverySecond(int first, int photographs) {
  std::string names;
  for (int i = first; i < photographs; i += 2) {
    const std::string number = std::to_string(i);
    names += (names.empty() ? "img_" : ",img_") + std::string(3 - number.size(), '0') + number;
  }
  return names;
}

// Two halves of a shoot are results of the same scene with other noise.
TEST(CompareCommand, TellsChanceFromChange) {
  const test::TemporaryFolder folder;
  const auto run = [&](std::vector<std::string> arguments) {
    return RunHostProgram(folder.Path(), arguments);
  };
  const std::vector<std::string> options = {
      "--photographs",           "48",  "--image", "640x360", "--tracker-noise-mm", "0.3",
      "--tracker-noise-degrees", "0.05"};
  std::vector<std::string> simulate = {"simulate", "shoot"};
  simulate.insert(simulate.end(), options.begin(), options.end());
  ASSERT_EQ(run(simulate).status, 0);
  const auto calibrate = [&](const std::string& shoot, const std::string& exclude,
                             const std::string& result) {
    ASSERT_EQ(run({"calibrate", "--config", shoot + "/shoot.toml", "--exclude", exclude, "--result",
                   result, "--no-report"})
                  .status,
              0);
  };
  calibrate("shoot", EverySecond(0, 48), "even.json");
  calibrate("shoot", EverySecond(1, 48), "odd.json");
  const ProgramRun chance = run({"compare", "even.json", "odd.json"});
  EXPECT_EQ(chance.status, 0) << chance.out;
  EXPECT_THAT(chance.out, HasSubstr("which may be chance."));

  // Another seed has another camera.
  simulate[1] = "other";
  simulate.insert(simulate.end(), {"--seed", "7"});
  ASSERT_EQ(run(simulate).status, 0);
  calibrate("other", EverySecond(0, 48), "other.json");
  const ProgramRun change = run({"compare", "even.json", "other.json", "--json"});
  EXPECT_EQ(change.status, 3);
  const auto json = nlohmann::json::parse(change.out);
  EXPECT_EQ(json["certainty"], "certain");
  EXPECT_LT(json["transform"]["p"].get<double>(), 0.001);
  EXPECT_EQ(json["sharedPhotographs"], 0);

  EXPECT_EQ(run({"compare", "even.json", "even.json"}).status, 0);
  EXPECT_EQ(run({"compare", "even.json", "shoot/truth.json"}).status, 2);
  EXPECT_EQ(run({"compare", "even.json", "none.json"}).status, 2);
  EXPECT_EQ(run({"compare", "even.json"}).status, 2);
}

}  // namespace
}  // namespace trackedcam::app
