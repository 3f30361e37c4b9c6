// Whole runs of verify on a shoot of which the last photographs are those of a later day.

#include <functional>
#include <sstream>

#include <Eigen/Geometry>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Fields = std::vector<std::string>;

// The poses of one tracker in a row, as they are reported.
void Displace(Fields& row, std::size_t begin, const Eigen::Vector3d& mm, double degreesAboutZ) {
  const auto value = [&](std::size_t i) { return std::stod(row.at(begin + i)); };
  Eigen::Quaterniond q(value(3), value(4), value(5), value(6));
  const Eigen::Vector3d position = Eigen::Vector3d(value(0), value(1), value(2)) + q * (1e-3 * mm);
  q = q * Eigen::AngleAxisd(degreesAboutZ * EIGEN_PI / 180, Eigen::Vector3d::UnitZ());
  const std::vector<double> changed = {position.x(), position.y(), position.z(), q.w(),
                                       q.x(),        q.y(),        q.z()};
  for (std::size_t i = 0; i < changed.size(); ++i) {
    std::ostringstream text;
    text.precision(12);
    text << changed[i];
    row.at(begin + i) = text.str();
  }
}

constexpr std::size_t kCamera = 2;  // field of its position
constexpr std::size_t kChart = 9;

class HostProgramVerify : public testing::Test {
 protected:
  // Calibrates once for all tests.
  static void SetUpTestSuite() {
    shoot_ = new test::TemporaryFolder;
    ASSERT_EQ(RunHostProgram(shoot_->Path(),
                             {"simulate", "shoot", "--photographs", "37", "--image", "640x360",
                              "--tracker-noise-mm", "0.1", "--tracker-noise-degrees", "0.02"})
                  .status,
              0);
    std::istringstream data(test::ReadFile(shoot_->File("shoot/tracker_data.csv")));
    std::string first;
    std::size_t rows = 0;
    for (std::string line; std::getline(data, line); ++rows) {
      (rows <= 32 ? first : *later_) += line + '\n';
    }
    test::WriteFile(shoot_->File("shoot/tracker_data.csv"), first);
    ASSERT_EQ(RunHostProgram(shoot_->Path(), {"calibrate", "--config", "shoot/shoot.toml"}).status,
              0);
  }
  static void TearDownTestSuite() {
    delete shoot_;
    shoot_ = nullptr;
  }

  // The later rows, each of them changed.
  static fs::path Data(const std::function<void(Fields&)>& change = {}, std::size_t count = 5) {
    std::istringstream rows(*later_);
    std::string text;
    std::string line;
    for (std::size_t k = 0; k < count && std::getline(rows, line); ++k) {
      Fields fields;
      std::istringstream row(line);
      for (std::string field; std::getline(row, field, ',');) {
        fields.push_back(field);
      }
      if (change) {
        change(fields);
      }
      for (std::size_t i = 0; i < fields.size(); ++i) {
        text += (i == 0 ? "" : ",") + fields[i];
      }
      text += '\n';
    }
    test::WriteFile(shoot_->File("shoot/later.csv"), text);
    return "shoot/later.csv";
  }

  static ProgramRun Verify(const fs::path& data, std::vector<std::string> more = {},
                           const std::string& result = "shoot/result.json") {
    std::vector<std::string> arguments = {"verify", "--result", result, "--data", data.u8string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHostProgram(shoot_->Path(), arguments);
  }

  static ProgramRun VerifyEdited(const std::function<void(Json&)>& edit) {
    Json json = Json::parse(test::ReadFile(shoot_->File("shoot/result.json")));
    edit(json);
    test::WriteFile(shoot_->File("edited.json"), json.dump());
    return Verify(Data(), {"--out", "never.json"}, "edited.json");
  }

  static test::TemporaryFolder* shoot_;
  static std::string* later_;
};

test::TemporaryFolder* HostProgramVerify::shoot_ = nullptr;
std::string* HostProgramVerify::later_ = new std::string;

TEST_F(HostProgramVerify, SaysThatACalibrationHolds) {
  const ProgramRun run = Verify(Data(), {"--out", "holds.json"});
  EXPECT_EQ(run.status, 0) << run.out << run.error;
  EXPECT_THAT(run.out, AllOf(HasSubstr("The calibration still holds."),
                             HasSubstr("with a probability of 95 %"), HasSubstr("holds.json")));
  EXPECT_EQ(run.error, "");
  const Json json = Json::parse(test::ReadFile(shoot_->File("holds.json")));
  EXPECT_EQ(json["answer"], "holds");
  EXPECT_EQ(json["status"], 0);
  EXPECT_EQ(json["used"], 5);
  EXPECT_EQ(json["photographs"].size(), 5U);
  EXPECT_EQ(json["photographs"][0]["verified"]["corners"].size(), 54U);
  EXPECT_LT(json["foundAt95"]["cameraTracker"]["mm"], 1.5);
  EXPECT_EQ(json["old"], json["new"]);
}

TEST_F(HostProgramVerify, WritesAPage) {
  const ProgramRun run = Verify(Data(), {"--report", "verified.html", "--at", "3m"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, AllOf(HasSubstr("verified.html"), HasSubstr("at 3.00 m")));
  EXPECT_THAT(test::ReadFile(shoot_->File("verified.html")),
              AllOf(HasSubstr("The calibration still holds."), HasSubstr("img_03")));
  test::WriteFile(shoot_->File("mine.html"), "own words");
  EXPECT_EQ(Verify(Data(), {"--report", "mine.html"}).status, 2);
  EXPECT_EQ(test::ReadFile(shoot_->File("mine.html")), "own words");
}

TEST_F(HostProgramVerify, FindsTheTrackerThatMoved) {
  const auto run = Verify(Data([](Fields& row) {
                            Displace(row, kCamera, {3, 0, 4}, 1);
                          }),
                          {"--json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.error, HasSubstr("The tracker on the camera has moved"));
  const Json json = Json::parse(run.out);
  EXPECT_EQ(json["answer"], "cameraTrackerMoved");
  const Json& move = json["cameraTracker"];
  const std::vector<double> mm = {3, 0, 4};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR(move["translationMm"][axis], mm[axis], 0.8);
    EXPECT_LT(move["translationHalfMm"][axis], 0.8);
    EXPECT_NEAR(move["rotationDegrees"][axis], axis == 2 ? 1 : 0, 0.1);
  }
  const auto chart = Verify(Data([](Fields& row) { Displace(row, kChart, {0, 5, 0}, 0); }));
  EXPECT_EQ(chart.status, 3);
  EXPECT_THAT(chart.out, HasSubstr("The tracker on the chart has moved"));
}

TEST_F(HostProgramVerify, NeedsThreePhotographs) {
  const auto run = Verify(Data({}, 2));
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("Only 2 of 2 photographs"));
}

TEST_F(HostProgramVerify, FreesTheMountingOfARemountedChart) {
  const auto move = [](Fields& row) { Displace(row, kChart, {50, 20, 0}, 90); };
  EXPECT_EQ(Verify(Data(move)).status, 3);
  const auto run = Verify(Data(move), {"--chart-remounted"});
  EXPECT_EQ(run.status, 0) << run.out;
}

TEST_F(HostProgramVerify, RefusesWhatIsNotTheCalibrations) {
  const auto refused = [&](const std::vector<std::string>& more) {
    const ProgramRun run = Verify(Data(), more);
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_EQ(run.out, "");
    return run.error;
  };
  EXPECT_THAT(refused({"--board", "7x5"}), AllOf(HasSubstr("7 x 5"), HasSubstr("9 x 6")));
  EXPECT_THAT(refused({"--square", "0.04"}), AllOf(HasSubstr("0.04 m"), HasSubstr("0.03 m")));
  EXPECT_THAT(refused({"--tracker-axes", "unreal"}),
              AllOf(HasSubstr("unreal"), HasSubstr("reported")));
  EXPECT_THAT(refused({"--quaternion-order", "xyzw"}), AllOf(HasSubstr("xyzw"), HasSubstr("wxyz")));

  ASSERT_EQ(RunHostProgram(shoot_->Path(),
                           {"simulate", "other", "--photographs", "12", "--image", "480x270"})
                .status,
            0);
  const ProgramRun other = Verify("other/tracker_data.csv");
  EXPECT_EQ(other.status, 2);
  EXPECT_THAT(other.error, AllOf(HasSubstr("480 x 270"), HasSubstr("640 x 360")));
}

TEST_F(HostProgramVerify, RefusesAFileThatIsNoWholeResult) {
  const auto refused = [](const ProgramRun& run) {
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_FALSE(fs::exists(shoot_->Path() / "never.json"));
    return run.error;
  };
  const auto calibration = [](Json& json) -> Json& { return json["crossCheck"]["calibration"]; };
  EXPECT_THAT(refused(VerifyEdited([&](Json& json) { json["crossCheck"].erase("calibration"); })),
              AllOf(HasSubstr("older form"), HasSubstr("Calibrate again")));
  EXPECT_THAT(refused(VerifyEdited([&](Json& json) { calibration(json)["form"] = 2; })),
              HasSubstr("another form"));
  EXPECT_THAT(
      refused(VerifyEdited([&](Json& json) { calibration(json)["transformCamTc"][3] = 0.5; })),
      HasSubstr("was edited"));
  EXPECT_THAT(refused(VerifyEdited([](Json& json) { json["verdict"]["level"] = "wrong"; })),
              HasSubstr("Calibrate again"));
  EXPECT_THAT(refused(VerifyEdited([](Json& json) { json = Json::object(); })),
              HasSubstr("not a result file"));

  const std::string whole = test::ReadFile(shoot_->File("shoot/result.json"));
  test::WriteFile(shoot_->File("cut.json"), whole.substr(0, whole.size() / 2));
  EXPECT_THAT(refused(Verify(Data(), {"--out", "never.json"}, "cut.json")),
              HasSubstr("cannot be read as a result file"));
}

TEST_F(HostProgramVerify, ReplacesNoOtherFile) {
  for (const char* out : {"shoot/result.json", "shoot/later.csv", "shoot/truth.json"}) {
    const std::string before = test::ReadFile(
        shoot_->File(out == std::string("shoot/later.csv") ? Data().u8string() : out));
    EXPECT_EQ(Verify(Data(), {"--out", out}).status, 2) << out;
    EXPECT_EQ(test::ReadFile(shoot_->File(out)), before);
  }
}

// Rows of another shoot, with other rigs: nothing of the calibration fits.
TEST_F(HostProgramVerify, RecognisesTheDataOfAnotherShoot) {
  ASSERT_EQ(RunHostProgram(shoot_->Path(), {"simulate", "another", "--seed", "7", "--photographs",
                                            "12", "--image", "640x360"})
                .status,
            0);
  const auto run = Verify("another/tracker_data.csv");
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_THAT(run.out, Not(HasSubstr("still holds")));
}

}  // namespace
}  // namespace trackedcam::app
