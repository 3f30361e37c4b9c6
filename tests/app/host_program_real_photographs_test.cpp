// Whole runs of the program on photographs of a real chessboard, with trackers made for them.

#include <random>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host/result/result_file.h"
#include "host_program.h"
#include "support/real_photographs.h"

namespace trackedcam::app {
namespace {

using Eigen::AngleAxisd;
using Eigen::Isometry3d;
using Eigen::Vector3d;
using Json = nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double kDegree = EIGEN_PI / 180;

// Rx · Ry · Rz and a translation, as --chart-rotation and --chart-translation state them.
Isometry3d Placed(const Vector3d& degrees, const Vector3d& metres) {
  return Eigen::Translation3d(metres) * AngleAxisd(degrees.x() * kDegree, Vector3d::UnitX()) *
         AngleAxisd(degrees.y() * kDegree, Vector3d::UnitY()) *
         AngleAxisd(degrees.z() * kDegree, Vector3d::UnitZ());
}

std::string Listed(const Vector3d& numbers) {
  return std::to_string(numbers.x()) + ',' + std::to_string(numbers.y()) + ',' +
         std::to_string(numbers.z());
}

class RealPhotographsShoot : public testing::TestWithParam<unsigned> {
 protected:
  RealPhotographsShoot() : random_(GetParam()) {}

  void SetUp() override {
    const auto photographs = test::RealPhotographs(TRACKEDCAM_REAL_PHOTOGRAPHS);
    ASSERT_EQ(photographs.size(), 13U)
        << "The photographs of the package opencv-doc are missing in "
        << TRACKEDCAM_REAL_PHOTOGRAPHS;
    const std::vector<Isometry3d> chartPoses = test::RealChartPoses(photographs);
    std::string data = "Time,Image,Tc x,y,z,w,x,y,z,Tr x,y,z,w,x,y,z\n";
    for (std::size_t i = 0; i < photographs.size(); ++i) {
      const Isometry3d Transform_Base_Tr = Placed({10.0 * i, -7.0 * i, 4.0 * i}, {0.2, 1.1, -0.6});
      const Isometry3d Transform_Base_Tc =
          Transform_Base_Tr * Transform_Tr_Chart * chartPoses[i].inverse() * Transform_Cam_Tc;
      // One after the other: which operand is drawn first is each compiler's own choice.
      const std::string chart = test::ReportedFields(Transform_Base_Tr * Noise());
      const std::string camera = test::ReportedFields(Transform_Base_Tc * Noise());
      data += std::to_string(i) + ',' + photographs[i].u8string() + camera + chart + '\n';
    }
    test::WriteFile(folder.File("tracker_data.csv"), data);
  }

  ProgramRun Calibrate(const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {
        "calibrate", "--data",   "tracker_data.csv", "--sensor",   "4.8x3.6",
        "--board",   "9x6",      "--square",         "0.025",      "--log-folder",
        "log",       "--result", "result.json",      "--no-report"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHostProgram(folder.Path(), arguments);
  }

  // Off by 1 degree and 27 mm.
  std::vector<std::string> WrongMounting() const {
    return {"--chart-rotation=" + Listed(mountingDegrees + Vector3d(1, 0, 0)),
            "--chart-translation=" + Listed(mountingMetres + Vector3d(0.018, -0.018, 0.009))};
  }

  Json Result() const { return Json::parse(test::ReadFile(folder.File("result.json"))); }

  host::TransformDifference OffTheTruth(const Json& result) const {
    const Eigen::Matrix4d rows = Transform_Cam_Tc.matrix().transpose();
    return host::Difference(result["transformCamTc"], {rows.data(), rows.data() + rows.size()});
  }

  void ExpectCloseToTheTruth(const Json& result) const {
    const auto off = OffTheTruth(result);
    EXPECT_LT(off.millimetres, 2) << "seed " << GetParam();
    EXPECT_LT(off.degrees, 0.2) << "seed " << GetParam();
  }

  const Vector3d mountingDegrees{12, -8, 5};
  const Vector3d mountingMetres{0.1, -0.05, 0.02};
  const Isometry3d Transform_Tr_Chart = Placed(mountingDegrees, mountingMetres);
  const Isometry3d Transform_Cam_Tc = Placed({70, -130, 40}, {0.03, -0.12, 0.07});
  test::TemporaryFolder folder;

 private:
  // Of a good tracking system, along and about each axis of the tracker: 0.3 mm and 0.05 degrees.
  Isometry3d Noise() {
    std::normal_distribution<double> normal;
    const auto triple = [&] {
      const double z = normal(random_);
      const double y = normal(random_);
      const double x = normal(random_);
      return Vector3d(x, y, z);
    };
    const Vector3d degrees = 0.05 * triple();
    return Placed(degrees, 0.0003 * triple());
  }

  std::mt19937 random_;
};

TEST_P(RealPhotographsShoot, TellsTheWrongMountingAndComesBackFromIt) {
  const ProgramRun wrong = Calibrate(WrongMounting());
  // The chart is tilted so far that the library sees, with code 14, that something is wrong.
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.error, StartsWith("trackedcam: error 14: "));
  const Json first = Result();
  EXPECT_EQ(first["findings"][0]["id"], "mountingOff") << "seed " << GetParam();
  EXPECT_NEAR(first["crossCheck"]["nominalMounting"]["offMm"], 27, 3) << "seed " << GetParam();
  EXPECT_NEAR(first["crossCheck"]["nominalMounting"]["offDegrees"], 1, 0.2)
      << "seed " << GetParam();
  EXPECT_EQ(first["code"], 14) << "seed " << GetParam();
  EXPECT_GT(OffTheTruth(first).millimetres, 8) << "seed " << GetParam();

  auto again = WrongMounting();
  again.emplace_back("--refine-mounting");
  const ProgramRun refined = Calibrate(again);
  EXPECT_EQ(refined.status, 0) << refined.error;
  EXPECT_EQ(Result()["firstRun"]["transformCamTc"], first["transformCamTc"]);
  ExpectCloseToTheTruth(Result());
}

TEST_P(RealPhotographsShoot, NeedsNoMounting) {
  const ProgramRun run = Calibrate({});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, HasSubstr("\n  --chart-rotation="));
  ExpectCloseToTheTruth(Result());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RealPhotographsShoot, testing::Values(1U, 2U));

}  // namespace
}  // namespace trackedcam::app
