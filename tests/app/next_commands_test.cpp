#include "app/terminal/next_commands.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "../host/engine_named.h"

namespace trackedcam::app {
namespace {

using host::EngineNamed;
using testing::ElementsAre;

std::string CommandLineOf(std::vector<const char*> words) {
  words.insert(words.begin(), "/usr/bin/trackedcam");
  return CommandLine(static_cast<int>(words.size()), words.data());
}

TEST(CommandLine, CanBePasted) {
  EXPECT_EQ(CommandLineOf({"calibrate", "--config", "shoot/shoot.toml"}),
            "trackedcam calibrate --config shoot/shoot.toml");
  EXPECT_EQ(CommandLineOf({"--data", "day 1/a&b.csv", "", "撮影.toml"}),
            "trackedcam --data \"day 1/a&b.csv\" \"\" 撮影.toml");
  EXPECT_EQ(CommandLineOf({"a\"b", "$HOME", "`x`"}),
            "trackedcam \"a\\\"b\" \"\\$HOME\" \"\\`x\\`\"");
}

TEST(WithOption, AddsItOnce) {
  const std::string line = "trackedcam calibrate --config shoot.toml";
  EXPECT_EQ(WithOption(line, "--tracker-units=mm"), line + " --tracker-units=mm");
  EXPECT_EQ(WithOption(line, ""), "");
  EXPECT_EQ(WithOption(line + " --tracker-units cm", "--tracker-units=mm"), "");
}

TEST(NextCalibrations, LeaveOutWhatFindingsAskFor) {
  host::Verdict verdict;
  const std::string line = "trackedcam calibrate --config shoot.toml";
  EXPECT_THAT(NextCalibrations(line, verdict), testing::IsEmpty());
  verdict.exclude = {"img_003", "img_007"};
  EXPECT_THAT(NextCalibrations(line, verdict), ElementsAre(line + " --exclude=img_003,img_007"));
  verdict.option = "--refine-mounting";
  EXPECT_THAT(NextCalibrations(line, verdict),
              ElementsAre(line + " --refine-mounting", line + " --exclude=img_003,img_007"));
}

// The verdict's list has those of the earlier call too.
TEST(NextCalibrations, HaveOneListOfThePhotographs) {
  host::Verdict verdict;
  verdict.exclude = {"img 3", "img_007"};
  const std::string expected =
      "trackedcam calibrate --data \"a b.csv\" --verbose"
      " \"--exclude=img 3,img_007\"";
  for (const std::vector<const char*>& words : std::vector<std::vector<const char*>>{
           {"calibrate", "--exclude", "img 3", "--data", "a b.csv", "--verbose"},
           {"calibrate", "--exclude=img 3", "--data", "a b.csv", "--verbose"},
           {"calibrate", "--data", "a b.csv", "--verbose", "--exclude", "\"$x"},
           {"calibrate", "--exclude=a", "--data", "a b.csv", "--exclude", "b", "--verbose"}}) {
    EXPECT_THAT(NextCalibrations(CommandLineOf(words), verdict), ElementsAre(expected));
  }
}

TEST(ExportCommands, AreForTheEnginesInCommonUse) {
  const std::string lens = (std::filesystem::path("day 1") / "lens.ulens").u8string();
  EXPECT_THAT(
      ExportCommands("day 1/result.json", {}, ""),
      ElementsAre("trackedcam export unreal --result \"day 1/result.json\" --out \"" + lens + "\"",
                  "trackedcam export unity --result \"day 1/result.json\"",
                  "trackedcam export aximmetry --result \"day 1/result.json\""));
}

TEST(ExportCommands, HaveTheParentAxes) {
  EXPECT_THAT(ExportCommands("r.json", {}, "-z,x,y"),
              ElementsAre("trackedcam export unreal --result r.json --parent-axes=-z,x,y --out "
                          "lens.ulens",
                          "trackedcam export unity --result r.json --parent-axes=-z,x,y",
                          "trackedcam export aximmetry --result r.json"));
}

TEST(ExportCommands, LeaveOutWhatIsDone) {
  EXPECT_THAT(ExportCommands("r.json", {&EngineNamed("unity")}, ""), testing::IsEmpty());
  EXPECT_THAT(ExportCommands("r.json", {&EngineNamed("unity"), &EngineNamed("unreal")}, ""),
              ElementsAre("trackedcam export unreal --result r.json --out lens.ulens"));
}

}  // namespace
}  // namespace trackedcam::app
