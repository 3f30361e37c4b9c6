#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// The camera looks along the tracker's y axis.
constexpr const char* kGimbalLocked = R"({
  "code": 0, "normFocal": [0.5, 1], "normCenter": [0.5, 0.5],
  "transformCamTc": [1, 0, 0, 0.1, 0, 1, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1]})";

class HostProgramExport : public testing::Test {
 protected:
  HostProgramExport() { test::WriteFile(folder.File("result.json"), kGimbalLocked); }

  ProgramRun Export(const std::string& engine, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"export", engine, "--result", "result.json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHostProgram(folder.Path(), arguments);
  }

  std::size_t LogsIn(const fs::path& path) const {
    std::size_t logs = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
      logs += entry.path().filename().u8string().rfind("log_", 0) == 0 ? 1 : 0;
    }
    return logs;
  }

  test::TemporaryFolder folder;
};

TEST_F(HostProgramExport, PrintsWhatTheEngineWants) {
  const ProgramRun run = Export("ue5");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, StartsWith("Unreal Engine 5, right-handed\n"));
  EXPECT_THAT(
      run.out,
      HasSubstr("  translation, cm                    -10.0000     -30.0000      20.0000\n"));
}

TEST_F(HostProgramExport, PrintsJsonAlone) {
  const ProgramRun run = Export("ue5-xn", {"--json"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(Json::parse(run.out)["engine"], "ue5-xn");
  EXPECT_EQ(Json::parse(run.out)["translationCm"], Json({30.0, 20.0, 10.0}));
}

TEST_F(HostProgramExport, ToUE4FailsInGimbalLock) {
  const ProgramRun run = Export("ue4");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.error, StartsWith("trackedcam: error 3: Unreal Engine 4: gimbal lock. "));
  EXPECT_THAT(run.out, HasSubstr("no figures"));
  EXPECT_EQ(Json::parse(Export("ue4", {"--json"}).out)["code"], 3);
}

TEST_F(HostProgramExport, ToAximmetryWarnsOfGimbalLock) {
  const ProgramRun run = Export("aximmetry");
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.error, StartsWith("trackedcam: warning: Aximmetry: gimbal lock. "));
  EXPECT_THAT(
      run.out,
      HasSubstr("  rotation, deg                       90.0000       0.0000       0.0000\n"));
}

TEST_F(HostProgramExport, LogsBesideTheResultOrWhereTold) {
  Export("ue5");
  EXPECT_EQ(LogsIn(folder.Path() / "run_001"), 1U);
  Export("ue5", {"--log-folder", "new/logs"});
  EXPECT_EQ(LogsIn(folder.Path() / "new" / "logs" / "run_001"), 1U);
}

TEST_F(HostProgramExport, NeedsAnEngineAndAResult) {
  const auto error = [&](const std::vector<std::string>& arguments) {
    const ProgramRun run = RunHostProgram(folder.Path(), arguments);
    EXPECT_EQ(run.status, 2) << run.error;
    EXPECT_EQ(run.out, "");
    return run.error;
  };
  EXPECT_THAT(error({"export", "--result", "result.json"}), HasSubstr("engine is required"));
  EXPECT_THAT(error({"export", "ue6", "--result", "result.json"}),
              HasSubstr("ue6 is not one of ue4, ue5, ue5-xn, aximmetry"));
  EXPECT_THAT(error({"export", "ue5"}), HasSubstr("--result is required"));
  EXPECT_THAT(error({"export", "ue5", "--result", "none.json"}),
              HasSubstr("--result: there is no file none.json"));
  test::WriteFile(folder.File("bad.json"), "{");
  EXPECT_THAT(error({"export", "ue5", "--result", "bad.json"}),
              AllOf(HasSubstr("bad.json is not the result of a calibration: ")));
}

}  // namespace
}  // namespace trackedcam::app
