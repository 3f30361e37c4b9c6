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

std::vector<double> Numbers(const ProgramRun& run, const char* key) {
  return Json::parse(run.out)[key].get<std::vector<double>>();
}

auto ElementsAreNear(std::vector<double> expected) {
  return testing::Pointwise(testing::DoubleNear(1e-12), std::move(expected));
}

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

TEST_F(HostProgramExport, PrintsTheValuesOfTheEngine) {
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
  EXPECT_THAT(run.out, HasSubstr("no values"));
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

TEST_F(HostProgramExport, ToUnrealAndUnityHasNoGimbalLock) {
  for (const char* engine : {"unreal", "unity"}) {
    const ProgramRun run = Export(engine, {"--json"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.error, HasSubstr("imageSize, distortion and inputs.sensorMm"));
    EXPECT_EQ(Json::parse(run.out)["lens"], nullptr);
  }
  EXPECT_THAT(Numbers(Export("unreal", {"--json"}), "locationCm"), ElementsAreNear({20, -10, 30}));
  EXPECT_FALSE(fs::exists(folder.Path() / "run_001"));  // no library, no log
}

TEST_F(HostProgramExport, TakesTheAxesOfTheParent) {
  const auto position = [&](const std::vector<std::string>& more) {
    return Numbers(Export("unity", more), "localPosition");
  };
  EXPECT_THAT(position({"--json"}), ElementsAreNear({-0.1, 0.3, 0.2}));
  EXPECT_THAT(position({"--json", "--parent-axes", "minus-z-forward"}),
              ElementsAreNear({0.1, 0.3, -0.2}));
  EXPECT_THAT(position({"--json", "--parent-axes", "-z,x,y"}), ElementsAreNear({-0.2, 0.1, 0.3}));
  const ProgramRun rightHanded = Export("unity", {"--parent-axes", "x,y,z"});
  EXPECT_EQ(rightHanded.status, 2);
  EXPECT_THAT(rightHanded.error, HasSubstr("--parent-axes: x,y,z is right-handed"));
  const ProgramRun ue4 = Export("ue4", {"--parent-axes", "z,-x,y"});
  EXPECT_EQ(ue4.status, 2);
  EXPECT_THAT(ue4.error, HasSubstr("--parent-axes: is for unreal and unity"));
}

TEST_F(HostProgramExport, WritesALensFile) {
  test::WriteFile(folder.File("result.json"),
                  R"({"code": 0, "imageSize": [1920, 1080], "normFocal": [0.5, 1],
  "normCenter": [0.5, 0.5], "distortion": [-0.1, 0, 0, 0, 0], "inputs": {"sensorMm": [36, 20]},
  "transformCamTc": [1, 0, 0, 0.1, 0, 1, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1]})");
  const ProgramRun run = Export("unreal", {"--out", "lenses/prime.ulens"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.error, HasSubstr("prime.ulens\n"));
  const Json lens = Json::parse(test::ReadFile(folder.File("lenses/prime.ulens")));
  EXPECT_EQ(lens["metadata"]["name"], "prime");
  EXPECT_EQ(lens["cameraParameterTables"].size(), 4U);

  const auto error = [&](const std::string& engine, const std::string& out) {
    const ProgramRun wrong = Export(engine, {"--out", out});
    EXPECT_EQ(wrong.status, 2);
    return wrong.error;
  };
  EXPECT_THAT(error("unity", "lens.ulens"), HasSubstr("--out: is for unreal"));
  EXPECT_THAT(error("unreal", "lens.json"), HasSubstr("does not end in .ulens"));
}

TEST_F(HostProgramExport, WritesNoLensFileWithoutALens) {
  const ProgramRun run = Export("unreal", {"--out", "lens.ulens"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.error, HasSubstr("the lens is unknown"));
  EXPECT_FALSE(fs::exists(folder.Path() / "lens.ulens"));
}

TEST_F(HostProgramExport, RefusesATransformThatIsNotRigid) {
  for (const char* transform : {"[0, 0, 0, 0.1, 0, 0, 0, 0.2, 0, 0, 0, 0.3, 0, 0, 0, 1]",
                                "[1, 0, 0, null, 0, 1, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1]",
                                "[1, 0, 0, 1e308, 0, 1, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1]"}) {
    test::WriteFile(folder.File("result.json"),
                    std::string(R"({"code": 0, "normFocal": [0.5, 1], "normCenter": [0.5, 0.5], )"
                                R"("transformCamTc": )") +
                        transform + "}");
    for (const char* engine : {"ue4", "ue5", "ue5-xn", "aximmetry", "unreal", "unity"}) {
      const ProgramRun run = Export(engine);
      EXPECT_EQ(run.status, 2) << engine << transform;
      EXPECT_EQ(run.out, "");
      EXPECT_THAT(run.error, HasSubstr("result.json"));
    }
  }
}

TEST_F(HostProgramExport, LogsNextToTheResultOrInTheLogFolder) {
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
