#include <map>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
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
  EXPECT_THAT(ue4.error,
              HasSubstr("--parent-axes: parent axes are for unreal, unity and opentrackio"));
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
  EXPECT_EQ(lens["cameraParameterTables"].size(), 3U);
  EXPECT_EQ(Export("unreal", {"--out", "lenses/prime.ulens", "--nodal-offset"}).status, 0);
  const Json withOffset = Json::parse(test::ReadFile(folder.File("lenses/prime.ulens")));
  EXPECT_EQ(withOffset["cameraParameterTables"].size(), 4U);

  const auto error = [&](const std::string& engine, const std::string& out) {
    const ProgramRun wrong = Export(engine, {"--out", out});
    EXPECT_EQ(wrong.status, 2);
    return wrong.error;
  };
  EXPECT_THAT(error("unity", "lens.ulens"), HasSubstr("--out: is not for unity"));
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
  EXPECT_THAT(error({"export", "--result", "result.json"}), HasSubstr("format is required"));
  EXPECT_THAT(
      error({"export", "ue6", "--result", "result.json"}),
      HasSubstr("ue6 is not one of ue4, ue5, ue5-xn, aximmetry, unreal, unity, opencv, ros, "
                "colmap, opentrackio, stmap"));
  EXPECT_THAT(error({"export", "ue5"}), HasSubstr("--result is required"));
  EXPECT_THAT(error({"export", "ue5", "--result", "none.json"}),
              HasSubstr("--result: there is no file none.json"));
  test::WriteFile(folder.File("bad.json"), "{");
  EXPECT_THAT(error({"export", "ue5", "--result", "bad.json"}),
              AllOf(HasSubstr("bad.json is not the result of a calibration: ")));
}

constexpr const char* kLens = R"("imageSize": [64, 36], "normFocal": [0.5, 0.9],
  "normCenter": [0.5, 0.5], "distortion": [-0.1, 0, 0, 0, 0], "inputs": {"sensorMm": [36, 20]},
  "transformCamTc": [1, 0, 0, 0.1, 0, 0, 1, 0.2, 0, -1, 0, 0.3, 0, 0, 0, 1]})";

class HostProgramVerdict : public HostProgramExport {
 protected:
  void WriteResult(const std::string& level) {
    test::WriteFile(folder.File("result.json"), R"({"code": 0, "verdict": {"level": ")" + level +
                                                    R"(", "message": "What it came to."}, )" +
                                                    kLens);
  }
  // With what each format needs.
  ProgramRun ExportTo(const std::string& format, std::vector<std::string> more = {}) {
    if (format == "stmap") {
      more.insert(more.end(), {"--out", "map.exr"});
    }
    return Export(format, more);
  }
  const std::vector<std::string> formats = {"unreal", "unity",       "ue4",    "ue5",
                                            "ue5-xn", "aximmetry",   "opencv", "ros",
                                            "colmap", "opentrackio", "stmap"};
};

TEST_F(HostProgramVerdict, OfACertainlyWrongResultExportsNothing) {
  WriteResult("wrong");
  for (const std::string& format : formats) {
    const ProgramRun refused = ExportTo(format);
    EXPECT_EQ(refused.status, 3) << format;
    EXPECT_EQ(refused.out, "") << format;
    EXPECT_EQ(refused.error,
              "trackedcam: error: What it came to. The result is not exported. Calibrate again, or "
              "export it with --even-if-wrong.\n");
  }
  EXPECT_FALSE(fs::exists(folder.Path() / "map_distort.exr"));
  for (const std::string& format : formats) {
    const ProgramRun run = ExportTo(format, {"--even-if-wrong"});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_THAT(run.out, Not(IsEmpty()));
    EXPECT_THAT(run.error, HasSubstr("trackedcam: warning: What it came to.\n"));
  }
}

TEST_F(HostProgramVerdict, OfADoubtfulResultSaysSo) {
  for (const std::string& format : formats) {
    WriteResult("doubt");
    const ProgramRun run = ExportTo(format);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_THAT(run.out, Not(IsEmpty()));
    EXPECT_THAT(run.error, HasSubstr("trackedcam: warning: What it came to.\n"));
    WriteResult("good");
    EXPECT_THAT(ExportTo(format).error, Not(HasSubstr("warning")));
  }
}

class HostProgramLensFile : public HostProgramVerdict {
 protected:
  HostProgramLensFile() { WriteResult("good"); }

  std::string ErrorOf(const std::string& format, const std::vector<std::string>& more) {
    const ProgramRun run = Export(format, more);
    EXPECT_EQ(run.status, 2) << run.error;
    EXPECT_EQ(run.out, "");
    return run.error;
  }
};

TEST_F(HostProgramLensFile, IsPrintedOrWritten) {
  for (const auto& [format, file] : std::map<std::string, std::string>{{"opencv", "lens/a.yml"},
                                                                       {"ros", "lens/b.yaml"},
                                                                       {"colmap", "cameras.txt"},
                                                                       {"opentrackio", "c.json"}}) {
    const std::string content = Export(format).out;
    EXPECT_THAT(content, HasSubstr("Written by trackedcam"));
    const ProgramRun run = Export(format, {"--out", file});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error,
                AllOf(StartsWith("Wrote "), HasSubstr(fs::path(file).filename().u8string())));
    EXPECT_EQ(test::ReadFile(folder.File(file)), content);
    EXPECT_EQ(Json::parse(Export(format, {"--json"}).out)["text"], content);
  }
}

TEST_F(HostProgramLensFile, ReplacesOnlyFilesOfTheProgram) {
  test::WriteFile(folder.File("mine.yml"), "mine: 1\n");
  EXPECT_THAT(ErrorOf("opencv", {"--out", "mine.yml"}), HasSubstr("is not a file of trackedcam"));
  EXPECT_THAT(ErrorOf("opencv", {"--out", "result.json"}), HasSubstr("does not end in .yml"));
  EXPECT_THAT(ErrorOf("opentrackio", {"--out", "result.json"}), HasSubstr("it is an input"));
  test::WriteFile(folder.File("lens_distort.exr"), "mine");
  EXPECT_THAT(ErrorOf("stmap", {"--out", "lens.exr"}), HasSubstr("lens_distort.exr exists"));
  EXPECT_FALSE(fs::exists(folder.Path() / "lens_undistort.exr"));
  fs::remove(folder.Path() / "lens_distort.exr");
  for (int round = 0; round < 2; ++round) {  // its own are replaced
    EXPECT_EQ(Export("stmap", {"--out", "lens.exr"}).status, 0);
    EXPECT_EQ(Export("opencv", {"--out", "lens.yml"}).status, 0);
    EXPECT_EQ(Export("opentrackio", {"--out", "lens.json"}).status, 0);
  }
}

TEST_F(HostProgramLensFile, TakesOnlyOptionsOfItsFormat) {
  EXPECT_THAT(ErrorOf("opencv", {"--overscan", "1.1"}), HasSubstr("--overscan: is for stmap"));
  EXPECT_THAT(ErrorOf("opencv", {"--preview", "a.png"}), HasSubstr("--preview: is for stmap"));
  EXPECT_THAT(ErrorOf("opencv", {"--nodal-offset"}), HasSubstr("--nodal-offset: is for a Lens"));
  EXPECT_THAT(ErrorOf("unreal", {"--nodal-offset"}), HasSubstr("--nodal-offset: is for a Lens"));
  EXPECT_THAT(ErrorOf("ros", {"--parent-axes", "z-forward"}),
              HasSubstr("--parent-axes: parent axes are for"));
  EXPECT_THAT(ErrorOf("stmap", {}), HasSubstr("--out: is required for stmap"));
  EXPECT_THAT(ErrorOf("stmap", {"--out", "a.exr", "--preview", "a.jpg"}),
              HasSubstr("does not end in .png"));
  for (const char* overscan : {"0.9", "4.1", "nan", "wide"}) {
    EXPECT_THAT(ErrorOf("stmap", {"--out", "a.exr", "--overscan", overscan}),
                HasSubstr("is not a factor from 1 to 4"));
  }
}

TEST_F(HostProgramLensFile, NeedsTheWholeLens) {
  test::WriteFile(folder.File("result.json"), kGimbalLocked);
  for (const std::string format : {"opencv", "ros", "colmap", "opentrackio"}) {
    EXPECT_THAT(ErrorOf(format, {}), HasSubstr("does not have the whole lens")) << format;
  }
}

}  // namespace
}  // namespace trackedcam::app
